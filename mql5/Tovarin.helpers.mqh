// Appended as it stands to Include/Tovarin.mqh by scripts/generate-exports.py (this line is not).
//+------------------------------------------------------------------+
//| Text for the 8-bit (A) functions: the system code page with its  |
//| terminating zero. Returns the bytes including the zero; 0 when   |
//| they do not fit (a static array too short), with a line in the   |
//| log and an empty text in the array, which every A function       |
//| refuses.                                                         |
//+------------------------------------------------------------------+
int TovarinAnsi(const string text, uchar &ansi[])
  {
   ArrayFree(ansi);
   int n = StringToCharArray(text, ansi, 0, WHOLE_ARRAY, CP_ACP);
   if(n > 0 && ansi[n - 1] == 0)
      return(n);
   if(ArraySize(ansi) > 0)
      ansi[0] = 0;
   Print("Tovarin: TovarinAnsi has no room for the text and its terminating zero: ", text);
   return(0);
  }

//+------------------------------------------------------------------+
//| String arrays as CR LF lines and 8-bit text, in plain MQL5.      |
//| They write and read the same bytes as the library's string-array |
//| functions (TovarinRaw.mqh), through the functions above only.    |
//| For text files of other programs (UTF-8, LF line ends, a last    |
//| line without line end) use CTovarinFile of TovarinFile.mqh.      |
//+------------------------------------------------------------------+
// A line is its characters followed by CR LF: UTF-16LE for the W helpers, 8-bit text in the system
// code page for the A helpers; no count, header or byte-order mark. A reader takes the whole rest of
// the file. Text after the last CR LF is not a line, and a lone CR or LF belongs to its line.
// Results: the number of lines written or read; TOVARIN_FAILED_COUNT after a failure, which a
// message box or a line in the log has explained. The readers need a file below 2 GiB and refuse a
// larger one with a line in the log.

// Logs that an array could not be resized to count elements (no memory, or a static array); false.
bool TovarinResizeFailed(const string what, const int count)
  {
   PrintFormat("Tovarin: %s cannot resize an array to %d elements", what, count);
   return(false);
  }

// The pointer's whole position, or -1 after a failure. A move by a negative distance returns all 64
// bits of the new position; from 4 GiB on, FileGetPointer, FileGetSize and forward moves give the low
// 32 under Wine and fail on Windows (their box then explains the failure).
long TovarinPosition(const long handle)
  {
   return(FileSetPointerCurrent(handle, 1) < 0 ? -1 : FileSetPointerCurrent(handle, -1));
  }

// Moves the file pointer to position, 2 GiB at most per call; false after a failure.
bool TovarinSeek(const long handle, const long position)
  {
   if(FileSetPointerBegin(handle, 0) < 0)
      return(false);
   for(long at = 0; at < position;)
     {
      int step = position - at > INT_MAX ? INT_MAX : (int)(position - at);
      if(FileSetPointerCurrent(handle, step) < 0)
         return(false);
      at += step;
     }
   return(true);
  }

// The file's size at any size (FileGetSize keeps the low 32 bits only), with the pointer's position
// in pointer, where the pointer is left; -1 after a failure.
long TovarinSize(const long handle, long &pointer)
  {
   pointer = TovarinPosition(handle);
   long size = pointer < 0 || FileSetPointerEnd(handle, 1) < 0 ? -1 : FileSetPointerCurrent(handle, -1);
   return(size >= 0 && TovarinSeek(handle, pointer) ? size : -1);
  }

// Bytes from the file pointer to the end of the file (0 past the end), or -1 after a failure.
long TovarinBytesLeft(const long handle)
  {
   long pointer;
   long size = TovarinSize(handle, pointer);
   if(size > INT_MAX)
     {
      Print("Tovarin: a file of 2 GiB or more cannot be read as lines");
      return(-1);
     }
   return(size < 0 ? -1 : size > pointer ? size - pointer : 0);
  }

// Writers collect this many characters of whole lines (a MiB or more) for one DLL call.
#define TOVARIN_LINES_BATCH 1048576

// Writes text in one DLL call: UTF-16LE (wide), or 8-bit in code page cp through buffer.
bool TovarinPutText(const long handle, const string &text, const bool wide, const uint cp, uchar &buffer[])
  {
   if(wide)
      return(FileWriteStringW(handle, text) == 2 * StringLen(text));
   int n = StringToCharArray(text, buffer, 0, StringLen(text), cp);
   return(n > 0 && FileWriteVoid(handle, buffer, (ulong)n) == (ulong)n);
  }

// Writes first (a byte-order mark, or "") and the lines, each followed by lineEnd, in one DLL call
// per TOVARIN_LINES_BATCH characters. The number of lines, -1 after a failure.
int TovarinPutLines(const long handle, const string &lines[], const string lineEnd, const bool wide, const uint cp,
                    const string first, uchar &buffer[])
  {
   int n = ArraySize(lines);
   string batch = first;
   StringReserve(batch, TOVARIN_LINES_BATCH + 1024); // without it the text grows as it goes
   for(int i = 0; i < n; i++)
     {
      batch += lines[i];
      batch += lineEnd;
      if(StringLen(batch) < TOVARIN_LINES_BATCH && i < n - 1)
         continue;
      if(!TovarinPutText(handle, batch, wide, cp, buffer))
         return(-1);
      batch = "";
      StringReserve(batch, TOVARIN_LINES_BATCH + 1024);
     }
   return(n);
  }

// Writes every string of the array as one UTF-16LE line (as FileWriteStrArrayW does).
ulong TovarinWriteLinesW(const long handle, const string &lines[])
  {
   uchar unused[];
   int n = TovarinPutLines(handle, lines, "\r\n", true, CP_ACP, "", unused);
   return(n < 0 ? TOVARIN_FAILED_COUNT : (ulong)n);
  }

// Writes every string of the array as one 8-bit line in the system code page (as
// FileWriteStrArrayA does with the same text).
ulong TovarinWriteLinesA(const long handle, const string &lines[])
  {
   uchar bytes[];
   int n = TovarinPutLines(handle, lines, "\r\n", false, CP_ACP, "", bytes);
   return(n < 0 ? TOVARIN_FAILED_COUNT : (ulong)n);
  }

// Reads the rest of the file as UTF-16LE lines into lines (resized once to their number), as
// FileReadStrArrayW does, and leaves the pointer at the end of the file.
ulong TovarinReadLinesW(const long handle, string &lines[])
  {
   ArrayFree(lines);
   long left = TovarinBytesLeft(handle);
   if(left < 0)
      return(TOVARIN_FAILED_COUNT);
   int length = (int)(left / 2);
   ushort text[];
   if(length > 0 && ArrayResize(text, length) != length)
     {
      TovarinResizeFailed("TovarinReadLinesW", length);
      return(TOVARIN_FAILED_COUNT);
     }
   if(length > 0 && FileReadUShortArray(handle, text, (ulong)length, 0, (ulong)length) != (ulong)length)
      return(TOVARIN_FAILED_COUNT);
   int count = 0;
   for(int i = 0; i + 1 < length; i++)
      if(text[i] == 13 && text[i + 1] == 10)
        {
         count++;
         i++;
        }
   if(ArrayResize(lines, count) != count)
     {
      TovarinResizeFailed("TovarinReadLinesW", count);
      return(TOVARIN_FAILED_COUNT);
     }
   for(int i = 0, k = 0, begin = 0; k < count; i++)
      if(text[i] == 13 && text[i + 1] == 10)
        {
         lines[k++] = i > begin ? ShortArrayToString(text, begin, i - begin) : "";
         begin = i + 2;
         i++;
        }
   return((ulong)count);
  }

// Reads the rest of the file as 8-bit lines in the system code page into lines (resized once to
// their number), as FileReadStrArrayA does, and leaves the pointer at the end of the file.
ulong TovarinReadLinesA(const long handle, string &lines[])
  {
   ArrayFree(lines);
   long left = TovarinBytesLeft(handle);
   if(left < 0)
      return(TOVARIN_FAILED_COUNT);
   int length = (int)left;
   uchar text[];
   if(length > 0 && ArrayResize(text, length) != length)
     {
      TovarinResizeFailed("TovarinReadLinesA", length);
      return(TOVARIN_FAILED_COUNT);
     }
   if(length > 0 && FileReadVoid(handle, text, (ulong)length) != (ulong)length)
      return(TOVARIN_FAILED_COUNT);
   int count = 0;
   for(int i = 0; i + 1 < length; i++)
      if(text[i] == 13 && text[i + 1] == 10)
        {
         count++;
         i++;
        }
   if(ArrayResize(lines, count) != count)
     {
      TovarinResizeFailed("TovarinReadLinesA", count);
      return(TOVARIN_FAILED_COUNT);
     }
   for(int i = 0, k = 0, begin = 0; k < count; i++)
      if(text[i] == 13 && text[i + 1] == 10)
        {
         lines[k++] = i > begin ? CharArrayToString(text, begin, i - begin, CP_ACP) : "";
         begin = i + 2;
         i++;
        }
   return((ulong)count);
  }

// Trailing characters that FileReadStringA/W drop: zeros, spaces, tabs, CR and LF.
bool TovarinIsTrimmed(const int c)
  {
   return(c == 0 || c == 32 || c == 10 || c == 13 || c == 9);
  }

// Refuses a text read of size characters that MQL5's arrays cannot hold; true when it fits.
bool TovarinTextFits(const string what, const ulong size)
  {
   if(size <= INT_MAX)
      return(true);
   PrintFormat("Tovarin: %s reads less than 2 GiB at once", what);
   return(false);
  }

// Reads size bytes of 8-bit text in the system code page into text, less trailing zeros, spaces,
// tabs, CR and LF, as FileReadStringA does. false after a failure (text is then empty).
bool TovarinReadStringA(const long handle, const ulong size, string &text)
  {
   text = "";
   if(!TovarinTextFits("TovarinReadStringA", size))
      return(false);
   int n = (int)size;
   uchar bytes[];
   if(n > 0 && ArrayResize(bytes, n) != n)
      return(TovarinResizeFailed("TovarinReadStringA", n));
   if(n > 0 && FileReadVoid(handle, bytes, size) != size)
      return(false);
   while(n > 0 && TovarinIsTrimmed(bytes[n - 1]))
      n--;
   if(n > 0)
      text = CharArrayToString(bytes, 0, n, CP_ACP);
   return(true);
  }

// Reads size UTF-16LE characters into text, less the same trailing characters, as FileReadStringW
// does but without its buffer shared by every program of the terminal. false after a failure.
bool TovarinReadStringW(const long handle, const ulong size, string &text)
  {
   text = "";
   if(!TovarinTextFits("TovarinReadStringW", size))
      return(false);
   int n = (int)size;
   ushort units[];
   if(n > 0 && ArrayResize(units, n) != n)
      return(TovarinResizeFailed("TovarinReadStringW", n));
   if(n > 0 && FileReadUShortArray(handle, units, size, 0, size) != size)
      return(false);
   while(n > 0 && TovarinIsTrimmed(units[n - 1]))
      n--;
   if(n > 0)
      text = ShortArrayToString(units, 0, n);
   return(true);
  }
//+------------------------------------------------------------------+
