;; The settings of Emacs in the pictures.  -*- lexical-binding: t; -*-
(package-initialize)
(add-to-list 'load-path (concat (getenv "EDITOR_FILES") "/emacs"))
(require 'szirpa-mode)
(setq szirpa-server (list (getenv "ZIRPA") "lsp")
      inhibit-startup-screen t
      native-comp-deferred-compilation nil
      frame-background-mode 'dark)
(menu-bar-mode -1)
(frame-set-background-mode (selected-frame))
(add-hook 'szirpa-mode-hook #'eglot-ensure)
(global-set-key (kbd "M-g n") #'flymake-goto-next-error)
