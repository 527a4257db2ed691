;;; labsh-mode.el --- Scripts of the bench shell labsh  -*- lexical-binding: t -*-

;; License: MIT
;; Package-Requires: ((emacs "26.1"))

;;; Commentary:

;; A mode for *.labsh, and the server for Eglot: M-x eglot in a script.
;; Tools/editors.sh writes the lists of words.

;;; Code:

(defgroup labsh nil
  "Scripts of the bench shell."
  :group 'languages)

(defcustom labsh-server-command '("labsh" "--lsp")
  "The command that serves scripts to the editor."
  :type '(repeat string))

(defconst labsh-keywords '("Do" "Else" "Then"))
(defconst labsh-functions '("abs" "acos" "asin" "atan" "Average" "Avg" "Bool" "ceil" "Config" "cos" "cosh" "CStr" "DateToDays" "DaysToDate" "Defined" "EndsWith" "Exist" "exp" "Fcvt" "FileCrc" "FileExist" "FileSize" "FileZynqChecksum" "floor" "FmtEng" "FromHex" "Ftoa" "GetConfig" "GetConfigBool" "GetConfigDbl" "GetConfigInt" "GetConfigStr" "GetConfigUInt" "GetEnv" "GetEvent" "GetProcId" "GetStatus" "GetUsage" "Icpt" "IF" "IndexOf" "InitIfNa" "InStr" "int" "Intercept" "IsErr" "IsError" "IsInList" "IsNA" "IsRunning" "LCase" "Left" "Len" "ListItem" "ListLen" "ln" "log" "Matches" "Max" "Med" "Median" "Mid" "Min" "Mod" "Not" "Rand" "Random" "Right" "Round" "Sd" "sign" "sin" "sinh" "Slope" "sqr" "sqrt" "StartsWith" "StDev" "StrCat" "StrReplace" "SubString" "Sum" "tan" "tanh" "ToHex" "ToString" "UCase" "Val" "VersionCompare"))
(defconst labsh-commands '("Assert" "AssertFail" "Calc" "Check" "Config" "Echo" "Event" "Exit" "Help" "If" "Log" "Plugins" "Run" "Set" "Stats" "Status" "Test" "Usage" "Wait" "Watch" "While"))
(defconst labsh-operators '("and" "or" "xor"))

(defconst labsh-font-lock-keywords
  `(("%[SCUE]{[^}\n]*}?" 0 font-lock-variable-name-face t)
    (,(concat (regexp-opt labsh-functions 'symbols) "(") 1 font-lock-function-name-face)
    (,(regexp-opt labsh-keywords 'symbols) . font-lock-keyword-face)
    (,(regexp-opt labsh-commands 'symbols) . font-lock-builtin-face)
    (,(regexp-opt labsh-operators 'symbols) . font-lock-keyword-face)
    ("[ \t]\\(--?[a-z]+\\)" 1 font-lock-preprocessor-face)))

(defvar labsh-mode-syntax-table
  (let ((table (make-syntax-table)))
    (modify-syntax-entry ?\" "\"" table)
    (modify-syntax-entry ?\n ">" table)
    (modify-syntax-entry ?_ "_" table)
    (modify-syntax-entry ?. "_" table)
    (modify-syntax-entry ?% "." table)
    (modify-syntax-entry ?& "." table)
    table))

;;;###autoload
(define-derived-mode labsh-mode prog-mode "labsh"
  "Major mode for scripts of the bench shell."
  (setq-local comment-start "# ")
  (setq-local comment-start-skip "^[ \t]*#+ *")
  ;; Only at the start of a line does "#" begin a comment.
  (setq-local syntax-propertize-function
              (syntax-propertize-rules ("^[ \t]*\\(#\\)" (1 "<"))))
  (setq-local font-lock-defaults '(labsh-font-lock-keywords nil t)))

;;;###autoload
(add-to-list 'auto-mode-alist '("\\.labsh\\'" . labsh-mode))

(defvar eglot-server-programs)
(with-eval-after-load 'eglot
  (add-to-list 'eglot-server-programs (cons 'labsh-mode labsh-server-command)))

(provide 'labsh-mode)
;;; labsh-mode.el ends here
