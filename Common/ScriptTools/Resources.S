/* The version record and the texts, in sections without flags: part of the file, but not loaded into memory. */

        .section .ov.version,"",%progbits
        .incbin "Version.txt"

        .section .ov.FINDINGS.TXT,"",%progbits
        .incbin "FINDINGS.TXT"
        .incbin "FINDINGS-EXPRESSIONS.TXT"

        .section .note.GNU-stack,"",%progbits
