; Commands typed at the command line and run from LISP, with their answers.
(defun kinds (/ e out)
  (setq e (entnext))
  (while e (setq out (cons (cdr (assoc 0 (entget e))) out) e (entnext e)))
  (reverse out))
(defun g (code e) (cdr (assoc code (entget e))))
; A line of three segments; answers on the command's line and on the next ones.
LINE 0,0 10,0
@0,5
0,5

(kinds)
(g 11 (entlast))
; Closing, and Undo taking back the last segment.
LINE 0,0 3,0 3,3 U 3,4 c
(length (kinds))
(g 10 (entlast))
(g 11 (entlast))
; Unknown names, the global and built-in forms, lower case.
NOSUCH
_NOSUCH
_circle 20,20 D 4
(g 40 (entlast))
.circle 30,30 2.5
(g 40 (entlast))
; command with points, numbers and Enter.
(command "LINE" '(100 100) '(110 100 0) "")
(g 10 (entlast))
(command "_.CIRCLE" '(5 5) 1.5)
(g 40 (entlast))
(command "POINT" "7,8")
(g 10 (entlast))
(command-s "POINT" '(1 2 3))
(vl-cmdf "NOSUCH" 1)
(vl-cmdf "POINT" '(4 4))
(command "NOSUCH")
(command-s "LINE" '(0 0))
; Layers: the current one takes new entities.
-LAYER M Survey C 3 Survey

(getvar "CLAYER")
POINT 1,1
(g 8 (entlast))
(cdr (assoc 62 (tblsearch "LAYER" "Survey")))
-LAYER S 0

; TEXT with a height, a rotation and text with spaces.
TEXT 0,0 2.5 90 Station 12 north
(g 1 (entlast))
(list (g 40 (entlast)) (g 50 (entlast)))
; Selection: last, by name and ALL.
(setq n (length (kinds)))
ERASE L

(= (length (kinds)) (1- n))
(setvar "CMDECHO" 0)
(command "ERASE" (entnext) "")
(setvar "CMDECHO" 1)
(= (length (kinds)) (- n 2))
; Undo takes back whole commands: the erasures and the layer change.
U
(= (length (kinds)) (1- n))
UNDO 1
(= (length (kinds)) n)
UNDO M
ERASE ALL

(kinds)
CIRCLE 0,0 1
(kinds)
UNDO B
(= (length (kinds)) n)
; Moving and copying.
(command "CIRCLE" '(0 0) 1)
(setvar "CMDECHO" 0)
(command "MOVE" (entlast) "" '(0 0) '(5 6))
(g 10 (entlast))
COPY L  2,0 2,3
(g 10 (entlast))
(command "MOVE" (entlast) "" "3,3" "")
(setvar "CMDECHO" 1)
(g 10 (entlast))
ID 3,4
; LIST shows what was drawn.
(command "_.ERASE" "ALL" "")
LINE 1,2 4,6 
CIRCLE 0,0 2
LIST ALL

; A program feeds a command over several calls; pause takes the next line.
(command "LINE" '(0 0))
(command '(10 0) pause "")
@0,10
(g 10 (entlast))
(g 11 (entlast))
; Loading programs and modules.
(progn (setq f (open "prog.lsp" "w")) (write-line "(defun c:hello () (princ \"Hello\") (princ))" f) (close f))
APPLOAD prog.lsp
HELLO
ARX L zepksample
ARX ?
ARX U zepksample
ARX L nosuchmodule
; U takes back a whole command that erased one entity and made another.
(setq n (length (kinds)) before (g 5 (entlast)))
(defun c:swap () (entdel (entlast)) (command "_.POINT" '(50 50)) (princ))
SWAP
(list (= (length (kinds)) n) (g 0 (entlast)) (g 10 (entlast)))
U
(list (= (length (kinds)) n) (= (g 5 (entlast)) before))
; A command cancelled inside a program reaches *error*: here the input ends
; while CIRCLE waits for its radius.
(defun *error* (msg) (princ (strcat "\nerror: " msg)) (princ))
(defun c:twocircles () (command "CIRCLE" '(0 0) 1 "CIRCLE" '(9 9)) (princ "not reached"))
TWOCIRCLES
