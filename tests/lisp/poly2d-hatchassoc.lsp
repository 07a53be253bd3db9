; HATCHASSOC: the loops of a hatch tied to the closed curves of their
; shape, whichever vertex they start at and whichever way they run.
(type (setq sq (entmakex '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 4) (70 . 1)
                     (10 0.0 0.0) (42 . 0.0) (10 10.0 0.0) (42 . 1.0) (10 10.0 10.0) (42 . 0.0) (10 0.0 10.0) (42 . 0.0)))))
(type (setq ci (ZEPK-Make-Circle '(3 3) 1.0)))
; The same square, run the other way from another corner; a circle elsewhere;
; an open line; the triangle as a closed 2D polyline.
(type (setq sq2 (entmakex '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 4) (70 . 1)
                      (10 10.0 10.0) (42 . -1.0) (10 10.0 0.0) (42 . 0.0) (10 0.0 0.0) (42 . 0.0) (10 0.0 10.0) (42 . 0.0)))))
(type (setq far (ZEPK-Make-Circle '(40 40) 1.0)))
(type (setq ln (ZEPK-Make-Line '(0 0) '(10 0))))
(entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 3) (70 . 1) (10 25 5) (10 20 0) (10 30 0)))
(type (setq tri (ZEPK-Poly->2dPoly (entlast))))
; The hatch: the first square, the small circle, a triangle of points.
(type (setq h (entmakex '((0 . "HATCH") (100 . "AcDbEntity") (100 . "AcDbHatch") (10 0.0 0.0 0.0) (210 0.0 0.0 1.0)
                    (2 . "SOLID") (70 . 1) (71 . 0) (91 . 0) (75 . 0) (76 . 1) (98 . 0)))))
(ZEPK-Hatch-AppendLoop h (list sq ci))
(ZEPK-Hatch-AppendLoop h '((20 0) (30 0) (25 5)))
(cdr (assoc 71 (entget h)))
; The first square out of the way, every object selected: the hatch
; itself, the open line and the far circle tie nothing.
(type (entdel sq))
(command "HATCHASSOC" "L" "ALL" "")
(progn (setq d (entget h)) (length d))
(cdr (assoc 71 d))
(mapcar 'cdr (vl-remove-if-not '(lambda (g) (= (car g) 97)) d))
(equal (cdr (assoc 330 (member '(97 . 1) d))) sq2)
(equal (cdr (assoc 330 (member '(97 . 1) (cdr (member '(97 . 1) d))))) ci)
(equal (cdr (assoc 330 (member '(97 . 1) (cdr (member '(97 . 1) (cdr (member '(97 . 1) d))))))) tri)
(mapcar '(lambda (e) (if (member (cons 330 h) (entget e)) T nil)) (list sq2 ci tri far ln))
; A line is no hatch.
(type (ZEPK-Make-Line '(0 0) '(1 1)))
(command "HATCHASSOC" "L")
