; Naive Fibonacci: function calls, integer arithmetic, comparisons.
(defun fib (n) (if (< n 2) n (+ (fib (- n 1)) (fib (- n 2)))))
(princ (fib 30))
(princ)
