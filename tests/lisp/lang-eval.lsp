; Reading and printing
!123
!-2.
!.5
!1e-6
!1e6
!123456.0
!1234567.0
!2147483647
!2147483648
!-2147483648
'abc
'(1 . "a")
'(1 (2 3) . 4)
!"tab\there \"quoted\" back\\slash \e \101"
!";| not a comment |;"
(list 1 ;| a block comment
inside |; 2)
'nil
'(a . (b . (c . nil)))
(quote (quote x))
; Variables and dynamic scope
(setq a 1 b 2 c (+ a b))
(defun show-x () x)
(defun outer (x) (show-x))
(outer 42)
(setq x 'global)
(outer 7)
!x
(defun count-up (n / i acc)
  (setq i 0 acc nil)
  (while (< i n) (setq acc (cons i acc) i (1+ i)))
  (reverse acc))
(count-up 5)
!i
(defun fact (n) (if (<= n 1) 1 (* n (fact (1- n)))))
(fact 10)
(fact 13)
; Functions as values
(mapcar '+ '(1 2 3) '(10 20 30 40))
(mapcar (function (lambda (p) (car p))) '((1 . a) (2 . b)))
(mapcar '(lambda (x) (* x 2)) '(1 2))
(apply 'max '(3 9 2))
(apply (lambda (a b) (list b a)) '(1 2))
((lambda (x) (* x x)) 12)
(type (lambda (x) x))
(type car)
(type setq)
(type 'car)
(type nil)
(type "s")
(type 1.0)
(type '(1))
(eval '(+ 1 2))
(eval (read "(* 6 7)"))
(read "abc def")
(read "")
(set (read "DYN") 5)
!DYN
(defun-q qfn (a / b) (setq b (* a 2)) b)
!qfn
(qfn 21)
(defun-q-list-ref 'qfn)
; Control
(if nil 1)
(if 0 'yes 'no)
(cond ((= 1 2) 'a) ((+ 1 1)) (t 'c))
(cond ((= 1 2) 'a))
(repeat 3 (setq n (if n (1+ n) 1)))
(foreach e '(1 2 3) (setq last-e e))
!e
(and 1 2 nil)
(and)
(or nil 3)
(progn 1 2 3)
(boundp 'never-set-symbol)
(boundp 'a)
(atoms-family 1 '("CAR" "NO-SUCH-SYMBOL-AT-ALL"))
(vl-symbol-name 'abc)
(vl-symbol-value 'a)
(ver)
