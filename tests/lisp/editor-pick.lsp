; Picking one entity: entsel, nentsel and nentselp into a rotated block,
; getcorner, getorient and getfiled on the command line.
(defun kind (e) (cdr (assoc 0 (entget e))))
(entmake '((0 . "BLOCK") (2 . "TREE") (70 . 0) (10 0 0 0)))
(entmake '((0 . "CIRCLE") (10 0 0 0) (40 . 1.0)))
(entmake '((0 . "LINE") (10 0 0 0) (11 0 3 0)))
(entmake '((0 . "ENDBLK")))
(entmake '((0 . "BLOCK") (2 . "GROVE") (70 . 0) (10 0 0 0)))
(entmake '((0 . "INSERT") (2 . "TREE") (10 5 0 0)))
(entmake '((0 . "ENDBLK")))
(entmake '((0 . "LINE") (10 0 0 0) (11 10 0 0)))
(kind (setq road (entlast)))
; TREE at (50,0), turned a quarter and twice the size: its line runs from
; (50,0) to (44,0) and its circle has radius 2.
(entmake '((0 . "INSERT") (2 . "TREE") (10 50 0 0) (41 . 2.0) (42 . 2.0) (43 . 2.0) (50 . 1.5707963267949)))
(kind (setq tree (entlast)))
(entmake '((0 . "INSERT") (2 . "GROVE") (10 70 0 0)))
(kind (setq grove (entlast)))
(defun round (x) (/ (fix (+ (* x 1000) (if (minusp x) -0.5 0.5))) 1000.0))
(defun rounded (m) (mapcar '(lambda (r) (mapcar 'round r)) m))
(length (setq p (entsel)))
5,0
(list (eq (car p) road) (cadr p))
(entsel "\nPick it: ")
5,1
(getvar "ERRNO")
(entsel)

(getvar "ERRNO")
(progn (initget "Next") (entsel "\nPick or [Next]: "))
n
(kind (car (entsel)))
xyz
L
(eq (car (entsel)) grove)
76,0
(kind (car (entsel)))
46,0
; Nested: the line inside TREE, the transform and the container.
(length (setq n (nentsel)))
46,0
(list (kind (car n)) (rounded (caddr n)) (eq (car (cadddr n)) tree))
(length (setq n (nentsel)))
52,0
(list (kind (car n)) (length n))
(length (setq n (nentselp)))
75,2
(list (kind (car n)) (rounded (caddr n)) (mapcar 'kind (cadddr n)) (eq (cadr (cadddr n)) grove))
(length (nentselp '(5 0)))
(nentselp '(5 5))
; Corners, orientations and file names.
(getcorner '(1 1) "\nOther corner: ")
@2,3
(setvar "ANGBASE" (/ pi 2))
(getangle "\nAngle: ")
0
(getorient "\nOrient: ")
0
(getorient '(0 0) "\nOrient: ")
0,1
(setvar "ANGBASE" 0)
(getfiled "Open a drawing" "" "dxf" 0)
missing

(getfiled "Save as" "plan" "dxf" 1)

(getfiled "Save as" "" "dxf" 1)

(close (open "plan.dxf" "w"))
(getfiled "Save as" "" "dxf" 1)
plan
y
(getfiled "Open a drawing" "" "dxf" 0)
plan
