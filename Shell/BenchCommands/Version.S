/* The version record, in a section without flags: part of the file, but not loaded into memory. */

        .section .ov.version,"",%progbits
        .incbin "Version.txt"

        .section .note.GNU-stack,"",%progbits
