; EXPORT: a picture of the drawing, its options as keywords, and names it
; cannot write.
LINE 0,0 100,0 100,50 
CIRCLE 50,25 20
EXPORT plain.png
(> (vl-file-size "plain.png") 1000)
; Options first, then the name; Enter keeps a default.
EXPORT S 320x240 B Black F Yes W 0,0 50,50 small.svg
(if (findfile "small.svg") T)
EXPORT Size 0x10 bad 800x600 Background  E drawing.pdf
(if (findfile "drawing.pdf") T)
EXPORT "with space.png"
(if (findfile "with space.png") T)
; A name of another kind, or in a folder that is not there.
EXPORT picture.bmp
(if (findfile "picture.bmp") T)
EXPORT nowhere/picture.png
(if (findfile "nowhere/picture.png") T)
EXPORT W 5,5 5,9 5,5 9,9 Size 2 scaled.png
(if (findfile "scaled.png") T)
EXPORT

(if (findfile "Drawing1.png") T)
