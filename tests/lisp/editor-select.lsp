; Selecting objects by windows, crossing windows, polygons, fences and
; picks, through ssget and through the Select objects prompt of commands.
; Entities are shown by the labels they were made with.
(setq labels nil)
(defun label (e) (cdr (assoc (cdr (assoc 5 (entget e))) labels)))
(defun ent (lbl) (handent (car (nth (vl-position lbl (mapcar 'cdr labels)) labels))))
(defun handles (ss / i out)
  (setq i 0)
  (if ss (repeat (sslength ss) (setq out (cons (label (ssname ss i)) out) i (1+ i))))
  (reverse out))
(defun make (lbl l) (entmake l) (setq labels (cons (cons (cdr (assoc 5 (entget (entlast)))) lbl) labels)) lbl)
(make "road" '((0 . "LINE") (10 0 0 0) (11 10 0 0)))
(make "ditch" '((0 . "LINE") (10 0 2 0) (11 10 4 0)))
(make "well" '((0 . "CIRCLE") (10 20 0 0) (40 . 2.0)))
(make "pad" '((0 . "SOLID") (10 30 0 0) (11 36 0 0) (12 30 6 0) (13 36 6 0)))
; A half circle below its chord, from (0,10) down to (5,5) and up to (10,10).
(make "bow" '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 2) (70 . 0) (10 0 10) (42 . 1.0) (10 10 10)))
(make "note" '((0 . "TEXT") (10 0 -5 0) (40 . 1.0) (1 . "ABC")))
(make "gate" '((0 . "LINE") (8 . "Locked") (10 0 20 0) (11 10 20 0)))
(make "unseen" '((0 . "LINE") (8 . "Off") (10 0 22 0) (11 10 22 0)))
(make "iced" '((0 . "LINE") (8 . "Frozen") (10 0 24 0) (11 10 24 0)))
(defun layer-state (name flags color / l)
  (setq l (entget (tblobjname "LAYER" name)))
  (entmod (subst (cons 62 color) (assoc 62 l) (subst (cons 70 flags) (assoc 70 l) l)))
  (list name (cdr (assoc 70 (tblsearch "LAYER" name))) (cdr (assoc 62 (tblsearch "LAYER" name)))))
(layer-state "Locked" 4 1)
(layer-state "Off" 0 -2)
(layer-state "Frozen" 1 3)
; Windows take what lies wholly inside, arcs by their true extents.
(handles (ssget "W" '(-1 -1) '(11 5)))
(handles (ssget "W" '(11 4.9) '(-1 10.1)))
(handles (ssget "W" '(-1 5.1) '(11 10.1)))
; Crossing windows also take what crosses their edges.
(handles (ssget "C" '(4 4) '(6 6)))
(handles (ssget "C" '(4 -1) '(6 1)))
(handles (ssget "C" '(-1 -1) '(40 1)))
; Inside a filled solid the window selects it; inside a circle it does not.
(handles (ssget "C" '(32 2) '(33 3)))
(handles (ssget "C" '(19.5 -0.5) '(20.5 0.5)))
; Fences and polygons.
(handles (ssget "F" '((5 -1) (5 12))))
(handles (ssget "F" '((-1 -2) (40 -2) (40 7))))
(handles (ssget "WP" '((-1 -1) (11 -1) (11 5))))
(handles (ssget "CP" '((-1 -1) (11 -1) (11 5))))
(handles (ssget "CP" '((12 -3) (40 -3) (40 3) (12 3))))
; Layers off or frozen hide their entities; locked ones are selectable.
(handles (ssget "C" '(-1 19) '(11 25)))
(handles (ssget "X" '((8 . "Off,Frozen"))))
; A filter after the mode's points.
(handles (ssget "C" '(-1 -1) '(40 11) '((0 . "LINE"))))
(handles (ssget "C" '(-1 -1) '(40 11) '((0 . "ARC"))))
; Picks: the entity within the pick box of the point.
(handles (ssget '(5 0.01)))
(ssget '(5 0.2))
(handles (ssget '(0.5 -4.5)))
(handles (ssget '(33 3)))
(handles (ssget '(20 2)))
(ssget '(20 0))
(handles (ssget '(5 24)))
; Asking: picks, windows, remove and add, undo, keywords and mistakes.
(handles (ssget))
5,0
C
4,4
6,6
10,4
R
10,0
A
U
xyz
W
-1,-1
11,5

; A point on nothing starts a window; polygons and fences end with Enter.
(handles (ssget))
50,50
-1,-6
R
12,-3
40,3
A
CP
12,-3
40,-3
40,7
U
40,7
12,7

F
-1,3
25,3


(handles (ssget))
ALL
R
P

; The last entity is frozen: nothing. Groups, several picks, one selection.
(handles (ssget))
L
WP
-1,-1
11,-1
11,5
-1,5

G
nogroup
M
20,2
32,3
32,3

SI
BOX
11,5
-1,-1
(handles (ssget ":S"))
36,6
(handles (ssget "_:S" '((0 . "CIRCLE"))))
36,6
; The other corner to the left makes a crossing window.
(handles (ssget))
12,1
4,-1

; Commands leave out what lies on locked layers.
(command "ERASE" "C" "-1,19" "11,25" "")
(handles (ssget "X" '((8 . "Locked"))))
; An entity name given to the command (not echoed: names differ from run to run).
(setvar "CMDECHO" 0)
(command "ERASE" (ent "road") "")
(setvar "CMDECHO" 1)
(handles (ssget "C" '(-1 -1) '(11 1)))
(command "_.MOVE" (ssget "W" '(29 -1) '(37 7)) "" "0,0" "0,10")
(handles (ssget "W" '(29 9) '(37 17)))
; An answer missing from command-s cancels the selection.
(vl-catch-all-error-message (vl-catch-all-apply 'command-s '("ERASE" "W" "0,0")))
(handles (ssget "P"))
