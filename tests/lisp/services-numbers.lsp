; Numbers and angles: the ddd.mmss form and its conversions, rounding,
; number bases, random numbers and geodetic coordinates; then the two
; evaluators of formulas held in text.

; ---- angle conversions, checked: each reports its argument failures
(ZEPK-RtoDEG pi)
(ZEPK-DEGtoR 180)
(ZEPK-DEGtoDMS 30.5)
(ZEPK-DMStoDEG 30.3)
(ZEPK-DMStoR 30.3)
(ZEPK-RtoDMS (/ pi 6))
(ZEPK-DEGtoDMS -30.5)
; Zero is 0.0, never minus zero.
(ZEPK-DEGtoDMS 0.0)
(ZEPK-DMStoDEG 0)
; Seconds within a hair of 60 carry into the minutes, and 60 minutes into
; the degrees.
(rtos (ZEPK-DEGtoDMS (+ 10 (/ 20 60.0) (/ 59.99999999 3600.0))) 2 10)
(rtos (ZEPK-DEGtoDMS (+ 10 (/ 59 60.0) (/ 59.99999999 3600.0))) 2 10)
; ddd.mmss is read without range check: 30.9999 is 99 minutes 99 seconds.
(rtos (ZEPK-DMStoDEG 30.9999) 2 8)
(ZEPK-RtoDEG)
(ZEPK-RtoDEG "a")
(ZEPK-DEGtoDMS 1.0 2.0)
(ZEPK-DMStoR '(1 2))
; An integer beyond 16 bits is no real to these functions.
(ZEPK-DEGtoR 40000)

; ---- the same conversions, silent: nothing printed, no result
(ZEPK-Num-R2D pi)
(ZEPK-Num-D2R 90)
(ZEPK-Num-D2DMS 30.5)
(ZEPK-Num-DMS2D 30.3)
(ZEPK-Num-DMS2R 30.3)
(ZEPK-Num-R2DMS (/ pi 4))
(ZEPK-Num-R2D "a")
(ZEPK-Num-D2DMS)
(ZEPK-Num-D2R 40000)
; A surplus argument is ignored.
(ZEPK-Num-D2DMS 30.5 "x" 3)

; ---- rounding: a fraction from 0.4999 up rounds away from zero, unless
; the flag asks for half to even
(ZEPK-Num-Round 2.4999 0)
(ZEPK-Num-Round 2.4999 0 T)
(ZEPK-Num-Round 2.5 0 T)
(ZEPK-Num-Round 3.5 0 T)
(ZEPK-Num-Round 2.5 0 nil)
(ZEPK-Num-Round -2.5 0)
(ZEPK-Num-Round 1234.5678 2)
(ZEPK-Num-Round 1234.5678 -2)
(ZEPK-Num-Round 7 1)
; Half to even has no value for negative digits.
(ZEPK-Num-Round 1234.5678 -2 T)
(ZEPK-Num-Round)
(ZEPK-Num-Round "2.5" 0)
(ZEPK-Num-Round 2.5)
(ZEPK-Num-Round 2.5 0.0)
(ZEPK-Num-Round 2.5 0 T 1)

; ---- number bases
(ZEPK-Num-Dec2Base 16 255)
(ZEPK-Num-Dec2Base 2 0)
(ZEPK-Num-Dec2Base 2 10)
(ZEPK-Num-Dec2Base 8 64)
(ZEPK-Num-Dec2Base 10 -5)
; Negative values show their 32-bit pattern; longs are taken.
(ZEPK-Num-Dec2Base 16 -1)
(ZEPK-Num-Dec2Base 2 -1)
(ZEPK-Num-Dec2Base 16 100000)
(ZEPK-Num-Dec2Base 3 10)
(ZEPK-Num-Dec2Base)
(ZEPK-Num-Dec2Base "16" 255)
(ZEPK-Num-Dec2Base 16)
(ZEPK-Num-Dec2Base 16 2.0)
; Characters outside the base's digits are skipped.
(ZEPK-Num-Base2Dec 2 "1x01")
(ZEPK-Num-Base2Dec 16 "fF")
(ZEPK-Num-Base2Dec 16 "ff" T)
(ZEPK-Num-Base2Dec 10 "-12")
(ZEPK-Num-Base2Dec 10 "99999")
; 32 bits wrap.
(ZEPK-Num-Base2Dec 16 "ffffffff")
(ZEPK-Num-Base2Dec 16 "100000000" 1)
(ZEPK-Num-Base2Dec 7 "12")
(ZEPK-Num-Base2Dec)
(ZEPK-Num-Base2Dec 16)
(ZEPK-Num-Base2Dec 16 255)
(ZEPK-Num-Base2Dec 2 "1" nil 4)

; ---- random numbers: the C runtime's generator, reproducible from a seed
(ZEPK-RandSeed 1)
(ZEPK-Rand 100)
(ZEPK-Rand 1 100)
(ZEPK-Rand 1 100 5)
(ZEPK-Rand 1 1.0 3)
(ZEPK-Rand 1 10.0)
(ZEPK-Rand 1 100 0)
(ZEPK-RandSeed 1)
(ZEPK-Rand)
; A real seeds with the low 16 bits of its stored form: 0 for most.
(ZEPK-RandSeed 1.5)
(ZEPK-Rand 100)
(ZEPK-Rand 0 100)
(ZEPK-RandSeed "a")
(ZEPK-RandSeed)
(numberp (ZEPK-Rand))
(ZEPK-Rand "a")
(ZEPK-Rand 1 "a")
(ZEPK-Rand 1 100 2.0)
(ZEPK-Rand 1 100 5 6)
(ZEPK-Rand 0)

; ---- geodetic coordinates: latitude and longitude in ddd.mmss
(setq xyz (ZEPK-BLH2XYZ 30.3 114.15 50.0 3))
(mapcar '(lambda (v) (rtos v 2 4)) (ZEPK-XYZ2BLH (car xyz) (cadr xyz) (caddr xyz) 3))
(mapcar '(lambda (v) (rtos v 2 3)) (ZEPK-BLH2XYZ 0 0 0 1))
(setq xy (ZEPK-BL2XY 30.3 114.15 114 4))
(mapcar '(lambda (v) (rtos v 2 6)) (ZEPK-XY2BL (car xy) (cadr xy) 114 4))
; Offsets: added to the northing and the easting.
(mapcar '(lambda (v) (rtos v 2 4)) (mapcar '- (ZEPK-BL2XY 30.3 114.15 114 4 100.0 38500000.0) xy))
(mapcar '(lambda (v) (rtos v 2 6)) (ZEPK-XY2BL (+ (car xy) 100) (+ (cadr xy) 38000000) 114 4 -100 -38500000.0))
(ZEPK-BLH2XYZ 30.3 114.15 50.0 5)
(ZEPK-XY2BL 1 2 114 0)
(ZEPK-BLH2XYZ 30.3 114.15 50.0)
(ZEPK-BLH2XYZ 30.3 "114" 50.0 3)
(ZEPK-BLH2XYZ 30.3 114.15 50.0 3.0)
(ZEPK-BLH2XYZ 30.3 114.15 50.0 3 1)
(ZEPK-BL2XY 30.3 114.15 114 4 1 "y")
(ZEPK-BL2XY 30.3 114.15 114 4 1 2 3)

; ---- the rewriting evaluator; every step goes to result.txt
(defun lines (name / f s out)
  (setq f (open name "r"))
  (while (setq s (read-line f)) (setq out (cons s out)))
  (close f)
  (reverse out))
(ZEPK-String-Express "1+2*3")
(lines "result.txt")
; In the system code page, each line ended by a line feed alone.
(vl-file-size "result.txt")
(ZEPK-String-Express "(1+2)*(3-5)")
(lines "result.txt")
(rtos (ZEPK-String-Express "sin[30]") 2 6)
(ZEPK-String-Express "log[10,100]")
(ZEPK-String-Express "pow[2,3]")
(ZEPK-String-Express "sign[0-4]+10")
(ZEPK-String-Express "2*PI")
; Each intermediate value is printed with six decimals.
(rtos (ZEPK-String-Express "1/3*3") 2 8)
(ZEPK-String-Express "a*b+c" '("a" "b" "c") '(2 3.5 1))
(ZEPK-String-Express "a*b" "a" "b" '(2.0 4.0))
; Parameters are put in before the constants, so a name holding "E" is safe.
(ZEPK-String-Express "E1*2+E" '("E1") '(3))
(ZEPK-String-Express "x+y" '("x" "y") '(1.5 2.5 3.5))
(ZEPK-String-Express "x+y" '("x" "y") "1")
(ZEPK-String-Express "x+y" 5)
; Invalid expressions: a box, and 0.0.
(ZEPK-String-Express "pow[2]")
(ZEPK-String-Express "sin[1,2]")
(ZEPK-String-Express "(1+2")
(ZEPK-String-Express "1+2)")
(ZEPK-String-Express "()")
(ZEPK-String-Express)
(ZEPK-String-Express 12)

; ---- the plain calculator, fed with survey labels as well as formulas
(ZEPK-String-Cal "1+2*3")
(ZEPK-String-Cal "=1+2=")
(ZEPK-String-Cal " (1+2)*4 ")
(ZEPK-String-Cal "1.5*2" 2)
(ZEPK-String-Cal "10/4" T)
(ZEPK-String-Cal "10/4" 0)
(ZEPK-String-Cal "10/4" nil)
(ZEPK-String-Cal "(12)")
(ZEPK-String-Cal "(12)" T)
(ZEPK-String-Cal "(1+2)")
(ZEPK-String-Cal "3#")
(ZEPK-String-Cal "12号" T)
(ZEPK-String-Cal "abc")
(ZEPK-String-Cal)
(ZEPK-String-Cal 12)
(ZEPK-String-Cal "1+2" 2 3)
