        .section .ov.FUNCTIONS.TXT,"",%progbits
        .incbin "FUNCTIONS.TXT"
        .section .note.GNU-stack,"",%progbits
