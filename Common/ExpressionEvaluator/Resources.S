/* The version record and the help texts, in sections without flags: part of the file, but not loaded into memory. */

        .section .ov.version,"",%progbits
        .incbin "Version.txt"

        .section .ov.HELP.TXT,"",%progbits
        .incbin "HELP.TXT"

        .section .ov.FUNCTIONS.TXT,"",%progbits
        .incbin "FUNCTIONS.TXT"

        .section .ov.ERRORS.TXT,"",%progbits
        .incbin "ERRORS.TXT"

        .section .note.GNU-stack,"",%progbits
