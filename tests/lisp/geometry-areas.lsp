; Areas of entities that are not curves: a hatch of a square with a round
; hole, the same hatch filling only its outer loop, and a point.
(type (setq h (entmakex '((0 . "HATCH") (100 . "AcDbEntity") (100 . "AcDbHatch") (10 0.0 0.0 0.0) (210 0.0 0.0 1.0)
                    (2 . "SOLID") (70 . 1) (71 . 0) (91 . 2)
                    (92 . 3) (72 . 0) (73 . 1) (93 . 4) (10 0.0 0.0) (10 10.0 0.0) (10 10.0 10.0) (10 0.0 10.0) (97 . 0)
                    (92 . 0) (93 . 1) (72 . 2) (10 5.0 5.0) (40 . 2.0) (50 . 0.0) (51 . 360.0) (73 . 1) (97 . 0)
                    (75 . 0) (76 . 1) (98 . 0)))))
(ZEPK-getArea h)
(- 100 (* pi 4))
(progn (entmod (subst '(75 . 2) '(75 . 0) (entget h))) (princ))
(ZEPK-getArea h)
(ZEPK-getArea (entmakex '((0 . "POINT") (10 1.0 1.0 0.0))))
(ZEPK-getArea h 1)
