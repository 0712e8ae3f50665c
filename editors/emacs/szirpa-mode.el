;;; szirpa-mode.el --- Sources of the ZIRPA assembler  -*- lexical-binding: t; -*-

;; Version: 1.3.0
;; Package-Requires: ((emacs "28.1"))
;; Keywords: languages

;;; Commentary:

;; Colours for .szirpa files and, with Eglot, the language server of zirpa:
;;
;;   (require 'szirpa-mode)
;;   (add-hook 'szirpa-mode-hook #'eglot-ensure)

;;; Code:

(require 'url-util)

;; Written by tools/write_grammar.py: begin
(defconst szirpa-instructions
  '("adca" "adda" "anda" "andcc" "asl" "asla" "asr" "asra" "bcc" "bcs" "beq" "bge" "bgt"
    "bhi" "bhs" "bita" "ble" "blo" "bls" "blt" "bmi" "bne" "bpl" "bra" "bsr" "bvc" "bvs"
    "clr" "clra" "cmpa" "cmpsp" "cmpx" "cmpy" "com" "coma" "daa" "dec" "deca" "eora" "exg"
    "inc" "inca" "jmp" "jsr" "lda" "ldsp" "ldx" "ldy" "leasp" "leax" "leay" "lsl" "lsla"
    "lsr" "lsra" "neg" "nega" "nop" "ora" "orcc" "psha" "pshc" "pshcc" "pshx" "pshy"
    "pula" "pulc" "pulcc" "pulx" "puly" "rol" "rola" "ror" "rora" "rti" "rts" "sbca" "sta"
    "stsp" "stx" "sty" "suba" "tfr" "tst" "tsta")
  "Words of instructions.")
(defconst szirpa-directives
  '("end" "equ" "fcb" "fcs" "org" "rmb")
  "Words of directives.")
(defconst szirpa-conditionals
  '("#if" "define" "elif" "else" "endif" "error" "ifdef" "ifndef")
  "Words behind a hash.")
(defconst szirpa-registers
  '("a" "cc" "sp" "x" "y")
  "Names of registers.")
;; Written by tools/write_grammar.py: end

(defgroup szirpa nil
  "Sources of the ZIRPA assembler."
  :group 'languages)

(defcustom szirpa-server '("zirpa" "lsp")
  "The command that starts the language server."
  :type '(repeat string)
  :group 'szirpa)

(defvar szirpa-mode-syntax-table
  (let ((table (make-syntax-table)))
    (modify-syntax-entry ?\; "<" table)
    (modify-syntax-entry ?\n ">" table)
    (modify-syntax-entry ?\" "\"" table)
    (modify-syntax-entry ?_ "_" table)
    (modify-syntax-entry ?$ "_" table)
    (modify-syntax-entry ?. "_" table)
    (modify-syntax-entry ?% "." table)
    table)
  "Comments, strings and names.")

;; A character between two apostrophes begins neither a string nor a comment.
(defconst szirpa--syntax-propertize
  (syntax-propertize-rules ("'\\(.\\)'" (1 "."))))

(defconst szirpa--label "^\\([A-Za-z_][A-Za-z0-9_$.]*\\):?"
  "A label, which begins in the first column.")

;; An operation ends at a blank, whatever its last letter is.
(defun szirpa--operation (words)
  "A pattern for WORDS behind blanks or a label; the first group is the word."
  (concat "^\\(?:[A-Za-z_][A-Za-z0-9_$.]*:?\\)?[ \t]+\\("
          (regexp-opt words) "\\)\\(?:[ \t]\\|$\\)"))

(defconst szirpa-font-lock-keywords
  `((,(concat "^[ \t]*\\(#[ \t]*" (regexp-opt szirpa-conditionals) "\\)\\(?:[ \t]\\|$\\)")
     (1 font-lock-preprocessor-face))
    (,szirpa--label (1 font-lock-function-name-face))
    (,(szirpa--operation szirpa-instructions) (1 font-lock-keyword-face))
    (,(szirpa--operation szirpa-directives) (1 font-lock-builtin-face))
    ("'.'" . font-lock-string-face)
    (,(concat "\\_<" (regexp-opt szirpa-registers) "\\_>") . font-lock-variable-name-face)
    ("\\(?:\\$[0-9A-Fa-f]+\\|%[01]+\\|\\_<[0-9]+\\)\\_>" . font-lock-constant-face))
  "What stands where in a line, ahead of what may stand anywhere.")

;;;###autoload
(define-derived-mode szirpa-mode prog-mode "ZIRPA"
  "Mode for sources of the ZIRPA assembler."
  (setq-local comment-start "; "
              comment-start-skip ";+[ \t]*"
              comment-column 32
              indent-tabs-mode nil
              tab-width 8
              indent-line-function #'tab-to-tab-stop
              syntax-propertize-function szirpa--syntax-propertize
              font-lock-defaults '(szirpa-font-lock-keywords nil t))
  (when buffer-file-name
    (setq-local compile-command
                (concat "zirpa build "
                        (shell-quote-argument (file-name-nondirectory buffer-file-name))))))

;;;###autoload
(add-to-list 'auto-mode-alist '("\\.szirpa\\'" . szirpa-mode))

;; ---- The language server ----

(defvar eglot-server-programs)
(declare-function eglot-current-server "eglot")
(declare-function jsonrpc-request "jsonrpc")

(with-eval-after-load 'eglot
  (add-to-list 'eglot-server-programs
               (cons 'szirpa-mode (lambda (&rest _) szirpa-server))))

(defun szirpa-show-listing ()
  "Show the listing of this source, as the buffer has it, beside it."
  (interactive)
  (let* ((server (or (eglot-current-server) (user-error "Start Eglot first: M-x eglot")))
         (document (list :uri (concat "file://" (url-hexify-string
                                                 (file-truename buffer-file-name)
                                                 url-path-allowed-chars))))
         ;; Deferred until the server knows the last changes.
         (result (jsonrpc-request server 'zirpa/listing (list :textDocument document)
                                  :deferred 'zirpa/listing)))
    (with-current-buffer (get-buffer-create "*ZIRPA listing*")
      (special-mode)
      (setq truncate-lines t)
      (let ((inhibit-read-only t))
        (erase-buffer)
        (insert (plist-get result :text))
        (goto-char (point-min)))
      (display-buffer (current-buffer)))))

(provide 'szirpa-mode)

;;; szirpa-mode.el ends here
