/* The help texts, in sections without flags: part of the file, but not loaded into memory. */

        .section .ov.TOPICS.TXT,"",%progbits
        .incbin "TOPICS.TXT"

        .section .ov.ERRORS.TXT,"",%progbits
        .incbin "ERRORS.TXT"

        .section .note.GNU-stack,"",%progbits
