; Changing and drawing with ROTATE, SCALE, MIRROR, EXPLODE, PLINE, ARC,
; -INSERT, ZOOM and REDO, their prompts and their answers.
(defun r (v) (cond ((null v) nil) ((listp v) (mapcar 'r v)) ((not (numberp v)) v) ((< (abs v) 1e-9) 0.0) (T (atof (rtos v 2 4)))))
(defun g (code e) (r (cdr (assoc code (entget e)))))
(defun n () (sslength (ssget "X")))
(defun verts (e) (r (mapcar 'cdr (vl-remove-if-not '(lambda (p) (member (car p) '(10 40 41 42))) (entget e)))))
; ROTATE about a base point; Copy keeps the original; Reference turns from
; one angle to another. Bad answers ask again.
LINE 0,0 10,0

ROTATE L  0,0 90
(list (g 10 (entlast)) (g 11 (entlast)))
ROTATE L  0,0 C 90
(list (n) (g 11 (entlast)))
ROTATE L  0,0 R 180 270
(g 11 (entlast))
ROTATE L  
0,0 abc 45
(g 11 (entlast))
; Clockwise angles, and directions from another base.
(setvar "ANGDIR" 1)
ROTATE L  0,0 45
(g 11 (entlast))
(setvar "ANGDIR" 0)
(setvar "ANGBASE" (/ pi 2))
LINE 0,0 @10<90

(g 11 (entlast))
(setvar "ANGBASE" 0)
; SCALE by a factor, by reference, as a copy; U takes it back and REDO puts
; it back again, once.
CIRCLE 5,5 1
SCALE L  5,5 3
(g 40 (entlast))
SCALE L  0,0 C R 3 6
(list (g 10 (entlast)) (g 40 (entlast)))
SCALE L  0,0 abc 0 -1 0.5
(g 40 (entlast))
U
(g 40 (entlast))
REDO
(g 40 (entlast))
REDO
ERASE ALL

; MIRROR: a copy, or the original itself; texts stay readable unless
; MIRRTEXT is 1.
TEXT 10,0 2 0 Left
MIRROR L  0,0 0,10 
(list (n) (g 10 (entlast)) (g 50 (entlast)) (g 71 (entlast)))
(setvar "MIRRTEXT" 1)
MIRROR L  0,0 0,10 Y
(list (n) (g 10 (entlast)) (g 50 (entlast)) (g 71 (entlast)))
(setvar "MIRRTEXT" 0)
ARC 0,0 5,5 10,0
MIRROR L  0,-1 10,-1 Y
(list (g 10 (entlast)) (g 50 (entlast)) (g 51 (entlast)))
; ARC in its forms.
ERASE ALL

ARC 0,0 5,5 10,0
(list (g 10 (entlast)) (g 40 (entlast)) (g 50 (entlast)) (g 51 (entlast)))
ARC C 0,0 5,0 A 90
(list (g 50 (entlast)) (g 51 (entlast)))
ARC 0,0 E 10,0 A -90
(list (g 10 (entlast)) (g 50 (entlast)) (g 51 (entlast)))
ARC 0,0 E 10,0 D 90
(list (g 10 (entlast)) (g 50 (entlast)) (g 51 (entlast)))
ARC 0,0 E 10,0 R -10
(list (g 10 (entlast)) (g 40 (entlast)))
ARC 0,0 C 5,0 L 5
(list (g 50 (entlast)) (g 51 (entlast)))
ARC 0,0 C 5,0 L 20
; PLINE: widths, arcs, Close; Undo takes a segment back.
PLINE 0,0 W 0.5 1 10,0 A 10,10 L 0,10 C
(list (g 70 (entlast)) (verts (entlast)))
PLINE 0,0 U 10,0 A CE 10,5 A 180 L U 10,10 H 0.5 0.5 20,10

(list (g 43 (entlast)) (verts (entlast)))
; EXPLODE makes lines and arcs of the polyline; U puts it back as it was.
(setq pl (entlast) before (entget pl) count (n))
EXPLODE L

(list (- (n) count) (g 0 (entlast)) (g 10 (entlast)))
U
(list (= (n) count) (equal before (entget pl)))
; -INSERT of a block with an attribute; EXPLODE gives its entities and the
; attribute's definition.
ERASE ALL

(entmake '((0 . "BLOCK") (2 . "TAG") (70 . 2) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "ATTDEF") (10 1.5 0.0 0.0) (40 . 0.5) (1 . "P1") (3 . "Point number") (2 . "NO") (70 . 0)))
(entmake '((0 . "ENDBLK")))
-INSERT TAG 20,20 2  90 P7
(progn (setq ref (entlast)) T)
(list (g 2 ref) (g 10 ref) (g 41 ref) (g 42 ref) (g 50 ref))
(list (g 1 (entnext ref)) (g 10 (entnext ref)) (g 40 (entnext ref)))
(setvar "ATTREQ" 0)
-INSERT  X 3 Y 2 R 0 30,30
(list (g 41 (entlast)) (g 42 (entlast)) (g 1 (entnext (entlast))))
(setvar "ATTREQ" 1)
-INSERT NOSUCH
; Mirrored, the reference gets a negative X scale and its attribute still
; reads forwards.
(setvar "CMDECHO" 0)
(command "MIRROR" ref "" '(0 0) '(0 10) "Y")
(setvar "CMDECHO" 1)
(list (g 10 ref) (g 41 ref) (g 42 ref) (g 50 ref) (g 10 (entnext ref)) (g 71 (entnext ref)))
(setvar "CMDECHO" 0)
(command "EXPLODE" ref "")
(setvar "CMDECHO" 1)
(list (n) (g 0 (entlast)) (g 2 (entlast)) (g 10 (entlast)))
(progn (setq c (ssname (ssget "X" '((0 . "CIRCLE"))) 0)) T)
(list (g 10 c) (g 40 c))
; ZOOM keeps the view in VIEWCTR and VIEWSIZE.
ZOOM E
(list (r (getvar "VIEWCTR")) (r (getvar "VIEWSIZE")) (r (getvar "EXTMIN")) (r (getvar "EXTMAX")))
ZOOM C 0,0 20
(list (r (getvar "VIEWCTR")) (r (getvar "VIEWSIZE")))
ZOOM 2X
(r (getvar "VIEWSIZE"))
ZOOM P
(r (getvar "VIEWSIZE"))
ZOOM W 0,0 40,10
(list (r (getvar "VIEWCTR")) (r (getvar "VIEWSIZE")))
REGEN
; Enter repeats the last command.
POINT 1,1

2,2
(n)
; A drawing file as a block.
ERASE ALL

CIRCLE 1,1 1
(setvar "CMDECHO" 0)
(command "_.SAVEAS" "part.dxf")
(setvar "CMDECHO" 1)
NEW .
-INSERT part 5,5 C 7,8 0
; The new drawing has its own symbols: the list is read directly.
(mapcar '(lambda (c) (cdr (assoc c (entget (entlast))))) '(2 41 42))
; NEW from a template drawing, and from one that is not there.
NEW part.dxf
(sslength (ssget "X"))
NEW nosuch.dxf
