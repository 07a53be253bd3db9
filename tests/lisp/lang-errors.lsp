; The default handler prints "; error: " and the message.
(undefined-function 1 2)
(1 2 3)
("str")
(setq 1 2)
(setq a)
(if)
(if 1 2 3 4)
(defun two-args (a b) (list a b))
(two-args 1)
(two-args 1 2 3)
(exit)
(quit)
; A user's *error* receives the message, with the failing program's locals
; still bound.
(defun *error* (msg) (princ (strcat "caught: " msg)) (princ))
(defun risky (/ state) (setq state "inside") (/ 1 0))
(defun *error* (msg) (princ (list 'caught msg 'state state)) (princ))
(risky)
!state
(defun c:cmd (/ *error*)
  (defun *error* (m) (princ (list 'local-handler m)) (princ))
  (car "x"))
(cmd)
CMD
(setq *error* nil)
; An error inside *error* falls back to the default message.
(defun *error* (msg) (no-such-fn))
(/ 1 0)
(setq *error* nil)
; vl-catch-all-apply catches without calling *error*.
(setq r (vl-catch-all-apply '/ '(1 0)))
(vl-catch-all-error-p r)
(vl-catch-all-error-message r)
(vl-catch-all-error-p (vl-catch-all-apply '+ '(1 2)))
(vl-catch-all-apply '+ '(1 2))
(vl-catch-all-error-message (vl-catch-all-apply 'car '(1)))
(vl-catch-all-error-message (vl-catch-all-apply 'exit nil))
(vl-catch-all-apply '(lambda () (vl-catch-all-apply 'nofn nil) 'inner-done) nil)
(type (vl-catch-all-apply 'nofn nil))
(vl-catch-all-error-message (vl-catch-all-apply 'vl-exit-with-error '("given up")))
(defun deep (n) (deep (1+ n)))
(deep 0)
'after-deep
; Reader errors say where.
(read "(1 2")
(read ")")
(read "\"open")
