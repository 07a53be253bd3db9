; The encodings and ciphers family: Base64 and the URL form on UTF-8, MD5
; and DES and the two scramblers on the system code page (936), the
; hexadecimal text form of files, round trips, and the failures: silent
; for most, in words for String-Encrypt and String-unCrypt.
;
; Base64 of UTF-8 text, and back.
(ZEPK-String-Base64Encode "中")
(ZEPK-String-Base64Encode "Hello, 测量!")
(ZEPK-String-Base64Decode (ZEPK-String-Base64Encode "Hello, 测量!"))
(ZEPK-String-Base64Encode "")
(ZEPK-String-Base64Decode "5Lit")
(ZEPK-String-Base64Decode "5L\nit")
(ZEPK-String-Base64Decode "5L!t")
(ZEPK-String-Base64Encode "a" "surplus")
(ZEPK-String-Base64Encode)
(ZEPK-String-Base64Encode 12)
(ZEPK-String-Base64Decode nil)
;
; The URL form: a blank and a "+" alike, Chinese in three-byte groups, and
; a two-byte sequence taken as three, swallowing the next character.
(ZEPK-String->URLCoding "a b+c")
(ZEPK-String->URLCoding "中文 test")
(ZEPK-String->URLCoding "x=1&y=2?#%")
(ZEPK-String->URLCoding "@*_+-./!',$~")
(ZEPK-String->URLCoding "éa")
(ZEPK-String->URLCoding "")
(ZEPK-String->URLCoding 12)
;
; MD5 of text in code page 936, and of files named by the text.
(ZEPK-String-MD5 "")
(ZEPK-String-MD5 "abc")
(ZEPK-String-MD5 "abc" nil)
(ZEPK-String-MD5 "中")
(ZEPK-File-TextStr2Binary "d6d0" "zhong.bin")
(ZEPK-File-MD5 "zhong.bin")
(ZEPK-String-MD5 "zhong.bin" T)
(ZEPK-String-MD5 "missing.bin" T)
(ZEPK-File-MD5 "missing.bin")
(ZEPK-File-MD5)
(ZEPK-String-MD5 1)
;
; The hexadecimal text of files: pairs of bytes as four digits, an odd
; last byte as two; the text read back two digits at a time.
(ZEPK-File-TextStr2Binary "00ff10414243" "six.bin")
(ZEPK-File-Binary2TextStr "six.bin")
(ZEPK-File-TextStr2Binary "0a0b0C" "odd.bin")
(ZEPK-File-Binary2TextStr "odd.bin")
(ZEPK-File-Binary2Text "odd.bin" "odd.txt")
(ZEPK-File-Binary2TextStr "odd.txt")
(ZEPK-File-Text2Binary "odd.txt" "odd2.bin")
(ZEPK-File-Binary2TextStr "odd2.bin")
(ZEPK-File-TextStr2Binary "0a 0b\n0c" "spaced.bin")
(ZEPK-File-Binary2TextStr "spaced.bin")
(ZEPK-File-TextStr2Binary "0a0bzz0c" "cut.bin")
(ZEPK-File-Binary2TextStr "cut.bin")
(ZEPK-File-TextStr2Binary "" "empty.bin")
(ZEPK-File-Binary2TextStr "empty.bin")
(ZEPK-File-Binary2TextStr "missing.bin")
(ZEPK-File-Binary2Text "missing.bin" "never.txt")
(findfile "never.txt")
(ZEPK-File-Binary2Text "odd.bin")
(ZEPK-File-TextStr2Binary "4142")
;
; Base64 of files: encoded to text or to a file, decoded to a file.
(ZEPK-File-Base64Encode "six.bin")
(ZEPK-File-Base64Encode "six.bin" "six.b64")
(ZEPK-File-Binary2TextStr "six.b64")
(ZEPK-File-Base64Decode "AP8QQUJD" "six2.bin")
(ZEPK-File-Binary2TextStr "six2.bin")
(ZEPK-File-Base64Decode "not base64!" "bad.bin")
(findfile "bad.bin")
(ZEPK-File-Base64Encode "missing.bin")
(ZEPK-File-Base64Decode "AP8Q")
;
; DES on one block of text: the key's first 8 bytes, the text's first 8.
; The cipher block is read as text in code page 936, so a round trip holds
; only when its bytes are characters there; the "?" below stands for a
; byte that is not, and the round trip fails.
(setq c (ZEPK-String-DESEncrypt "测量数据" "key"))
(ZEPK-String-DESDecrypt c "key")
(ZEPK-String-DESDecrypt c "kez")
(ZEPK-String-DESDecrypt (ZEPK-String-DESEncrypt "abc" "k1") "k1")
(ZEPK-String-DESDecrypt (ZEPK-String-DESEncrypt "abcdefgh-and-more" "k1") "k1")
(= (ZEPK-String-DESEncrypt "abcdefgh" "12345678") (ZEPK-String-DESEncrypt "abcdefgh" "12345678tail"))
(ZEPK-String-DESEncrypt "abcdefgh" "12345678")
(ZEPK-String-DESDecrypt (ZEPK-String-DESEncrypt "abcdefgh" "12345678") "12345678")
(ZEPK-String-DESEncrypt "abc")
(ZEPK-String-DESEncrypt 1 "key")
;
; DES on files: a short last block padded with zero bytes.
(ZEPK-File-TextStr2Binary "0102030405060708090a0b" "plain.bin")
(ZEPK-File-DESEncrypt "plain.bin" "cipher.bin" "密钥key")
(vl-file-size "cipher.bin")
(ZEPK-File-DESDecrypt "cipher.bin" "back.bin" "密钥key")
(ZEPK-File-Binary2TextStr "back.bin")
(ZEPK-File-DESEncrypt "missing.bin" "cipher.bin" "k")
(ZEPK-File-DESEncrypt "plain.bin" "cipher.bin")
;
; The one-way scrambler: blank pairs become "*", short text pads to the
; key's length; its failures end in ".".
(ZEPK-String-Encrypt "  " " ")
(ZEPK-String-Encrypt "ab" "key")
(ZEPK-String-Encrypt "hello world" "abc")
(ZEPK-String-Encrypt "~~" "~")
(ZEPK-String-Encrypt "abc" "")
(ZEPK-String-Encrypt)
(ZEPK-String-Encrypt "a")
(ZEPK-String-Encrypt 1 "a")
(ZEPK-String-Encrypt "a" 1)
(ZEPK-String-Encrypt "a" "b" "c")
;
; The byte scrambler and its reverse, in both forms, on Chinese text too.
(ZEPK-String-Crypt "ab" "a" T)
(ZEPK-String-Crypt "ab" "a")
(ZEPK-String-Crypt "ab" "a" nil)
(ZEPK-String-Crypt "测量" "k" T)
(ZEPK-String-unCrypt (ZEPK-String-Crypt "测量数据" "密钥") "密钥")
(ZEPK-String-unCrypt (ZEPK-String-Crypt "测量数据" "密钥" T) "密钥")
(ZEPK-String-unCrypt (ZEPK-String-Crypt "short" "a much longer key") "a much longer key")
(ZEPK-String-unCrypt '(0 3) "a")
(ZEPK-String-unCrypt '(0 3 2) "a")
(ZEPK-String-unCrypt '(0 3 2 5) "a")
(ZEPK-String-unCrypt "000003" "a")
(ZEPK-String-Crypt "" "a" T)
(ZEPK-String-Crypt "ab")
(ZEPK-String-unCrypt "00003" "a")
(ZEPK-String-unCrypt '(0 "x") "a")
(ZEPK-String-unCrypt 5 "a")
(ZEPK-String-unCrypt '(0 3) 5)
(ZEPK-String-unCrypt '(0 3))
(ZEPK-String-unCrypt '(0 3) "a" "b")
(ZEPK-String-unCrypt)
