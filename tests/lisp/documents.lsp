; Several drawings open at once: each has its own LISP symbols, variables
; and selection sets; NEW and OPEN make a new document and CLOSE closes the
; current one, going back to the one before.
(setq site "north" n 1)
(defun here () (list (getvar "DWGNAME") site))
(here)
(getvar "DBMOD")
POINT 1,1
(getvar "DBMOD")
(setvar "USERR1" 500.0)
(getvar "DBMOD")
(setq ss (ssget "X"))
(sslength ss)
NEW
.
; The new drawing knows none of the first one's symbols.
(getvar "DWGNAME")
(list site n)
(here)
(ssget "X")
(sslength ss)
(setq site "south")
POINT 2,2
POINT 3,3
(sslength (ssget "X"))
(progn (setvar "CMDECHO" 0) (command "_SAVEAS" "two") (setvar "CMDECHO" 1) (princ))
(getvar "DWGNAME")
(getvar "DBMOD")
OPEN
two.dxf
(getvar "DWGNAME")
(getvar "DBMOD")
(sslength (ssget "X"))
!site
CLOSE
(list (getvar "DWGNAME") site)
CLOSE
(list (getvar "DWGNAME") site (sslength ss))
(here)
; A program that makes a new drawing goes on with its own variables; the
; new drawing's come in when the command line is idle again.
(progn (command "NEW" ".") (setq after-new site))
(list (getvar "DWGNAME") site after-new)
CLOSE
(list (getvar "DWGNAME") site after-new)
; A module's functions are in every document: it hears of each, also of
; those open when it is loaded.
NEW
.
(arxload "zepksample")
(sample-sum 1 2)
CLOSE
(sample-sum 3 4)
NEW
.
(sample-sum 5 6)
(arxunload "zepksample")
(sample-sum 1 2)
CLOSE
(sample-sum 1 2)
; Closing the last drawing leaves a new one.
CLOSE
(getvar "DWGNAME")
(list site (here))
; The clock of timers: virtual time moves only when told.
ZEPKCLOCK V
ZEPKCLOCK 1500
ZEPKCLOCK x
ZEPKCLOCK R
