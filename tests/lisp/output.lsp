; Printing on the command line: princ, prin1, print, terpri, prompt, alert,
; write-line and write-char without a file.

; princ prints strings as they are, prin1 with quotes and escapes; both
; return their argument.
(princ "abc")
(prin1 "abc")
(princ "tab\there \"q\" back\\slash")
(prin1 "tab\there \"q\" back\\slash")
(princ "two\nlines")
(prin1 "two\nlines")
(princ '(1 "a" 2.5 sym (nested "x")))
(prin1 '(1 "a" 2.5 sym (nested "x")))
(princ "中文字符")
(prin1 "中文字符")
(princ 'abc)
(princ nil)
(prin1 3.0)

; print starts a new line and ends with a space.
(print "x")
(print '(1 . 2))
(progn (princ "a") (print "b") (princ "c"))

; Without an argument nothing is printed: the quiet ending of a program.
(princ)
(prin1)
(print)
(defun c:quiet () (princ "done") (princ))
(c:quiet)

; nil as the file is the command line.
(princ "to screen" nil)
(prin1 "to screen" nil)

(progn (princ "one") (terpri) (princ "two") (terpri))
(terpri)
(prompt "Select objects: ")
(prompt "中文提示")
(alert "Drawing saved.")
(progn (princ "partial") (alert "on its own line"))

(write-line "a line")
(write-line "中文")
(write-line "")
(write-char 72)
(progn (write-char 20013) (write-char 10) (write-char 65))

; Wrong arguments.
(princ "a" "not a file")
(prin1 1 2)
(print 1 'f)
(princ 1 nil 3)
(terpri 1)
(prompt 5)
(prompt)
(alert nil)
(write-line 5)
(write-line)
(write-line "a" "b")
(write-char "H")
(write-char 1.5)
