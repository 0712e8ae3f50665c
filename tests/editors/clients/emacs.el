;; A session in Emacs with Eglot; writes what it saw to seen.json in the working directory.
;; $ZIRPA is the server.  -*- lexical-binding: t; -*-

(require 'cl-lib)
(require 'json)
(package-initialize)
(add-to-list 'load-path (concat (getenv "EDITOR_FILES") "/emacs"))
(require 'szirpa-mode)
(setq szirpa-server (list (getenv "ZIRPA") "lsp"))
(add-hook 'szirpa-mode-hook #'eglot-ensure)
(setq make-backup-files nil create-lockfiles nil last-nonmenu-event ?x)

(defvar seen nil)

(defun see (name value)
  (push (cons name value) seen))

(defmacro wait-for (what condition)
  `(let ((end (+ (float-time) 20)))
     (while (not ,condition)
       (when (> (float-time) end)
         (error "Waited in vain: %s" ,what))
       (accept-process-output nil 0.02))))

;; Changes are sent when the user pauses, which nobody does here.
(defun pass-time ()
  (eglot--signal-textDocument/didChange))

(defun go-to (line column)
  (goto-char (point-min))
  (forward-line (1- line))
  (forward-char (1- column)))

(defun line-text (line)
  (save-excursion
    (go-to line 1)
    (buffer-substring-no-properties (point) (line-end-position))))

(defun diagnostic (each)
  (let* ((text (flymake-diagnostic-text each))
         (data (cdr (assq 'eglot-lsp-diag (eglot--diag-data each)))))
    (save-excursion
      (goto-char (flymake-diagnostic-beg each))
      (vector (line-number-at-pos) (1+ (current-column)) (plist-get data :code) text))))

;; The faces of the words of a line.
(defun faces (line)
  (font-lock-ensure)
  (save-excursion
    (go-to line 1)
    (let (found)
      (while (re-search-forward "[^ \t]+" (line-end-position) t)
        (push (symbol-name (get-text-property (match-beginning 0) 'face)) found))
      (vconcat (nreverse found)))))

(defun session ()
  (find-file "prog.szirpa")
  (see 'mode (symbol-name major-mode))
  ;; Without a screen no command ends, after which the client would connect.
  (apply #'eglot (eglot--guess-contact))
  (flymake-start)
  (wait-for "diagnostics" (flymake-diagnostics))
  (see 'diagnostics (vconcat (mapcar #'diagnostic (flymake-diagnostics))))

  (go-to 2 9)
  (cl-letf (((symbol-function 'completing-read)
             (lambda (_prompt offered &rest _)
               (see 'offered (vconcat (mapcar #'car offered)))
               (caar offered))))
    (call-interactively #'eglot-code-actions))
  (wait-for "the fix" (string-match-p "LDA " (line-text 2)))
  (pass-time)
  (see 'faces (faces 2))

  (go-to 2 18)
  (xref-find-definitions (xref-backend-identifier-at-point 'eglot))
  (see 'jump (line-number-at-pos))

  (eglot-rename "tempo")
  (wait-for "the new name" (string-match-p "tempo" (line-text 6)))
  (pass-time)
  (see 'text (vconcat (split-string (buffer-string) "\n" t)))

  (szirpa-show-listing)
  (with-current-buffer "*ZIRPA listing*"
    (see 'listing (vconcat (split-string (buffer-string) "\n" t)))))

(condition-case failure
    (session)
  (error (see 'failure (error-message-string failure))))
(with-temp-file "seen.json"
  (insert (json-encode seen)))
(kill-emacs)
