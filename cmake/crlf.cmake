# cmake -DIN=<file> -DOUT=<file> -P crlf.cmake: copies IN with CR LF line ends, whatever the checkout's.
file(READ "${IN}" text)
string(REPLACE "\r\n" "\n" text "${text}")
string(REPLACE "\n" "\r\n" text "${text}")
file(WRITE "${OUT}" "${text}")
