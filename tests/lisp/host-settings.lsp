; The host's settings: setenv keeps a value in the registry (the process
; environment is what getenv falls back on), and the setting ACAD is the
; support path that findfile and load search.
(getenv "ZEPK_NO_SUCH_SETTING")
(setenv "ZepkSetting" "测站 1")
(getenv "ZEPKSETTING")
(vl-mkdir "lib")
(vl-mkdir "more")
(progn (setq f (open "more/helper.lsp" "w")) (write-line "(defun helper () 'found)" f) (close f))
(findfile "helper.lsp")
(setenv "ACAD" "lib; more")
(findfile "helper.lsp")
(load "helper")
(helper)
(findfile "nothing.lsp")
