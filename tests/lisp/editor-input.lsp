; The input functions read their answers from the lines that follow.
(getpoint "\nWhere: ")
1,2
(getpoint '(1 1 0) "\nTo: ")
@2,3
(getpoint "\nPolar: ")
10<90
(getreal "\nReal: ")
abc
2.5
(getint "\nInt: ")
2.5
7
(progn (initget 6) (getint "\nPositive: "))
0
-3
4
(getreal "\nEnter gives nil: ")

(progn (initget 1) (getreal "\nRequired: "))

3
(progn (initget "Yes No") (getkword "\nSure? [Yes/No]: "))
maybe
y
(progn (initget "LType,LT Layer") (getkword "\nWhich: "))
lt
(progn (initget "Oui Non _Yes No") (getkword "\nD'accord: "))
o
(progn (initget "Oui Non _Yes No") (getkword "\nD'accord: "))
_n
(progn (initget "Width") (getpoint "\nPoint or [Width]: "))
w
(getdist '(0 0) "\nDistance: ")
3,4
(list (getstring "\nWord: ") (getstring "\nWord: "))
two words
(getstring T "\nLine: ")
two words here
(getangle "\nAngle: ")
90
(getangle '(1 1) "\nDirection: ")
1,5
(getangle "\nAngle: ")
-90
(list (getpoint "\nTwo on a line: ") (getreal))
5,5 6
(defun c:pick (/ p) (setq p (getpoint "\nPoint: ")) (princ (car p)) (princ))
PICK 8,9
(defun *error* (msg) (princ (strcat "\nerror: " msg)) (princ))
(getpoint "\nLast: ")
