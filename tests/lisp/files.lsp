; Text files: open, close, read-line, read-char, write-line, write-char and
; the printing functions with a file. Files are written in the current
; folder only.

(defun chars (name / f c out)
  (setq f (open name "r"))
  (while (setq c (read-char f)) (setq out (cons c out)))
  (close f)
  (reverse out))
(defun lines (name / f s out)
  (setq f (open name "r"))
  (while (setq s (read-line f)) (setq out (cons s out)))
  (close f)
  (reverse out))

; ---- writing and reading back
(setq f (open "a.txt" "w"))
(type f)
(write-line "first line" f)
(write-line "中文第二行" f)
(princ "princ: " f)
(prin1 "q\"uoted" f)
(print 42 f)
(write-char 65 f)
(write-char 20013 f)
(close f)
(list f)
; 11 + 11 + 7 + 10 + 4 + 1 + 2 bytes: Chinese characters take two bytes each.
(vl-file-size "a.txt")
(setq f (open "a.txt" "r"))
(read-line f)
(read-line f)
(read-line f)
(read-line f)
(read-line f)
(read-line f)
(close f)
(lines "a.txt")

; ---- the bytes on disk: code page 936, two bytes for each Chinese character
(setq f (open "gbk.txt" "w"))
(write-line "中文" f)
(close f)
(vl-file-size "gbk.txt")
(chars "gbk.txt")
(mapcar 'chr (chars "gbk.txt"))
; A character the code page has no place for is written as one "?".
(setq f (open "q.txt" "w"))
(write-line "aกb😀c" f)
(close f)
(vl-file-size "q.txt")
(lines "q.txt")

; ---- line ends: "\r\n" is one line end; a lone "\r" is an ordinary character
(setq f (open "crlf.txt" "w"))
(princ "l1\r\nl2\r\n\r\nx\ry" f)
(close f)
(vl-file-size "crlf.txt")
(lines "crlf.txt")
(chars "crlf.txt")

; ---- an empty file
(close (open "empty.txt" "w"))
(vl-file-size "empty.txt")
(lines "empty.txt")
(chars "empty.txt")

; ---- "w" replaces, "a" appends; the mode may be in either case
(setq f (open "a.txt" "A"))
(write-line "appended" f)
(close f)
(lines "a.txt")
(setq f (open "a.txt" "W"))
(write-line "replaced" f)
(close f)
(lines "a.txt")
(close (open "a.txt" "R"))

; ---- a file that starts with a UTF-8 byte-order mark is read as UTF-8
(vl-filename-base (setq bom (strcat (getenv "ZEPK_TEST_DATA") "/files-bom.txt")))
(lines bom)
(chars bom)
(vl-list->string (chars bom))
; Appending to it keeps it UTF-8.
(vl-file-copy bom "bom.txt")
(setq f (open "bom.txt" "a"))
(write-line "追加" f)
(close f)
(vl-file-size "bom.txt")
(lines "bom.txt")

; ---- bytes that are not text in the code page read as "?", one for each
(vl-filename-base (setq gbk (strcat (getenv "ZEPK_TEST_DATA") "/files-gbk.txt")))
(lines gbk)
(chars gbk)

; ---- a file dropped without close is closed and its text kept
(setq f (open "dropped.txt" "w"))
(write-line "kept" f)
(setq f nil)
(lines "dropped.txt")

; ---- files that cannot be opened
(open "missing.txt" "r")
(open "" "r")
(open "no-such-folder/x.txt" "w")
(open "." "r")
(open "." "w")
(open "a.txt" "x")
(open "a.txt" "rw")
(open "a.txt" "")
(open "a.txt" 'r)
(open 1 "r")
(open "a.txt")
(open "a.txt" "r" "utf8")

; ---- misuse of a descriptor
(setq fw (open "w.txt" "w") fr (open "a.txt" "r"))
(read-line fw)
(read-char fw)
(write-line "x" fr)
(write-char 65 fr)
(princ "x" fr)
(prin1 "x" fr)
(print "x" fr)
(close fw)
(close fw)
(write-line "x" fw)
(read-line fr)
(close fr)
(read-line fr)
(read-char fr)
(close nil)
(close "a.txt")
(close)
(read-line "a.txt")
(read-char 1)
(read-line fr 1)
(write-char 65 fw 1)
