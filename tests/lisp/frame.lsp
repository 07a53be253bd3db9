; The toolkit's frame: how its LISP functions read arguments and fail, the
; global tolerance, callbacks into LISP, timers, the message hook, the
; progress meter, its commands, and its load and unload.
(ZEPK-GetVerSion)
; A surplus argument is reported, and the call still succeeds with nothing.
(ZEPK-GetVerSion 1)
; The tolerance is stored before the surplus is seen.
(ZEPK-SetPrec 1e-6 2)
(ZEPK-GetPrec)
(ZEPK-SetPrec "a")
(ZEPK-GetPrec)
(ZEPK-SetPrec 1)
(ZEPK-GetPrec)
; An integer beyond 16 bits is not a real to the walker: ignored.
(ZEPK-SetPrec 40000)
(ZEPK-GetPrec)
(ZEPK-SetPrec 1e-10)
(ZEPK-SetPrec)
(ZEPK-GetPrec 1)
; Points: a list whose first number is a small integer arrives coded, and
; reads back exact as a base point.
(ZEPK-GetPoint '(10 2.0 3.0) "\nPoint: ")
@1,1
(ZEPK-GetPoint "\nJust a prompt: ")
4,5,6
(ZEPK-GetPoint '(1 2) 3)
(ZEPK-GetPoint 5)
(ZEPK-GetPoint '(1 2) "\nP: " 3)
(ZEPK-GETINT 3)
(ZEPK-GETINT "\nCount: " 3)
(ZEPK-GETINT "\nCount: ")
42
(ZEPK-GETREAL "\nLength: ")
2.5
(ZEPK-GETSTRING "\nName: ")
north
; Enter gives nil; a cancel fails without a word.
(ZEPK-GETREAL "\nLength: ")

(ZEPK-ENTSEL "\nPick: ")
50,50
(ZEPK-ENTSEL 1)
MYINPUT
5
PI
MYINPUT
3

; The catch wrapper runs a function by name; a LISP error comes back as text.
(defun half (x) (/ x 2.0))
(brightwren-Catch "half" 5)
(brightwren-Catch "half" "five")
; The progress meter never moves back.
(ZEPK-ProgressInit "Survey" 10)
(ZEPK-Progress 5)
(ZEPK-Progress 2)
(ZEPK-Progress)
(ZEPK-Progress "x")
(ZEPK-Progress 1 2)
(ZEPK-ProgressInit "Survey" "ten")
(ZEPK-ProgressDone 1)
(ZEPK-ProgressDone)
(ZEPK-ProgressInit)
(ZEPK-ProgressDone)
; Timers call back only in the document where they were set.
ZEPKCLOCK V
(defun tick (w m e ms) (setq ticks (1+ ticks)))
(setq ticks 0)
(ZEPK-SetLispTimer)
(ZEPK-SetLispTimer 5)
(ZEPK-SetLispTimer "tick")
(ZEPK-SetLispTimer "tick" 100)
ZEPKCLOCK 350
!ticks
NEW
.
(defun tick (w m e ms) (princ "\nwrong document"))
ZEPKCLOCK 500
CLOSE
!ticks
ZEPKCLOCK 100
!ticks
; A second call sets the same timer anew; one kill stops it.
(ZEPK-SetLispTimer "tick" 1000)
(ZEPK-KillLispTimer 1 2)
ZEPKCLOCK 5000
!ticks
(ZEPK-KillLispTimer)
; A timer callback that fails is reported by its status and goes on firing.
(defun tick (w m e ms) (car 1))
(ZEPK-SetLispTimer "tick" 100)
ZEPKCLOCK 200
(ZEPK-KillLispTimer)
; The window message hook.
(ZEPK-RemoveHook)
(ZEPK-RegisterHook)
(defun seen (w msg wp lp time pt) (setq heard (cons (list msg wp lp) heard)))
(ZEPK-RegisterHook "seen")
; Posted messages reach the hook when the command line is idle.
ZEPKPOST 1024 7 9
ZEPKCLOCK 1
!heard
; A hook given a number: the old hook goes first, then the call fails.
(ZEPK-RegisterHook 3)
(ZEPK-RemoveHook)
; The toolkit's commands, with numbers for names.
NewLayer
SURVEY
(cdr (assoc 62 (tblsearch "LAYER" "SURVEY")))
AddCircle
0,0
5
10,0
20,0
(mapcar '(lambda (e) (list (cdr (assoc 10 (entget e))) (cdr (assoc 40 (entget e)))))
        (list (ssname (ssget "X" '((0 . "CIRCLE"))) 0) (ssname (ssget "X" '((0 . "CIRCLE"))) 1)))
(type (car (ZEPK-ENTSEL "\nPick a circle: ")))
5,0
(= (car (ZEPK-ENTSEL)) (ssname (ssget "X" '((0 . "CIRCLE"))) 0))
-5,0
sorttest
3,1
1,2
1,1

; Rows not built are neither functions nor commands.
(ZEPK-WmfOut-In)
703
; Unloading takes every function and command away; loading brings them back.
(arxunload "zepkapi")
(ZEPK-GetVerSion)
NewLayer
(arxload "zepkapi")
(ZEPK-GetVerSion)
(arxload "zepkapi" "already")
UnRegZEPK
