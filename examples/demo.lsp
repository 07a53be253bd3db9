;;; ZEPK demo: a closed traverse computed in LISP, then the same data handed
;;; to a compiled module through the host's LISP bridge.

(defun dms->rad (d m s) (* pi (/ (+ d (/ m 60.0) (/ s 3600.0)) 180.0)))

;; Legs of a closed traverse: bearing (degrees minutes seconds) and distance.
(setq legs
  (list (list (dms->rad 45 0 0) 100.0)
        (list (dms->rad 135 0 0) 100.0)
        (list (dms->rad 225 0 0) 100.0)
        (list (dms->rad 315 0 0) 100.0)))

;; Walk the legs from a start point; bearings are measured from north,
;; clockwise, as surveyors give them.
(defun walk (start legs / pt pts)
  (setq pt start pts (list start))
  (foreach leg legs
    (setq pt (polar pt (- (/ pi 2) (car leg)) (cadr leg))
          pts (cons pt pts)))
  (reverse pts))

(defun shoelace (pts / a p q)
  (setq a 0.0)
  (while (cdr pts)
    (setq p (car pts) q (cadr pts)
          a (+ a (- (* (car p) (cadr q)) (* (car q) (cadr p))))
          pts (cdr pts)))
  (abs (/ a 2.0)))

(setq pts (walk '(1000.0 2000.0) legs))
(princ "\nTraverse stations:")
(setq i 0)
(foreach p pts
  (princ (strcat "\n  P" (itoa i) "  E=" (rtos (car p) 2 3) "  N=" (rtos (cadr p) 2 3)))
  (setq i (1+ i)))
(princ (strcat "\nClosure error: " (rtos (distance (car pts) (last pts)) 2 6)))
(princ (strcat "\nEnclosed area: " (rtos (shoelace pts) 2 2) " m2"))
(princ (strcat "\nFirst bearing as an angle: " (angtos (angle (car pts) (cadr pts)) 1 4)))

;; Errors are caught, as in the host.
(setq r (vl-catch-all-apply 'shoelace '(42)))
(if (vl-catch-all-error-p r)
  (princ (strcat "\nCaught: " (vl-catch-all-error-message r))))

;; The same stations through compiled code: the example module defines its
;; functions with acedDefun and reads its arguments as result buffers.
(arxload "zepksample")
(princ "\nCentre of the first leg (compiled): ")
(prin1 (sample-midpoint (car pts) (cadr pts)))
(princ "\nHow the bridge passes LISP values: ")
(prin1 (sample-describe 7 70000 (car pts) '(10 1.0 2.0) '(8 . "SURVEY") "测量"))
(defun diagonal (p q) (strcat "diagonal " (rtos (distance p q) 2 3)))
(princ "\nA compiled function calling back into LISP: ")
(prin1 (sample-apply "diagonal" (list (car pts) (caddr pts))))
(arxunload "zepksample")
(princ "\n")
(princ)
