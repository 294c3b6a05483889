//+------------------------------------------------------------------+
//| TovarinFile.mqh: a file class over Tovarin.dll in the manner of  |
//| the Standard Library's CFileBin and CFileTxt, text files as      |
//| other programs write them, and the library's path check.         |
//+------------------------------------------------------------------+
// Include it instead of Tovarin.mqh, which it includes. Nothing here shows a box of its own: a
// call that it refuses before reaching the DLL (a bad path, an array slice outside the array, no
// open file) writes one line to the log; a call that the DLL refuses shows the DLL's box.
#include "Tovarin.mqh"

// Text of WriteLines and ReadLines (CTovarinFile::SetText).
#define TOVARIN_UTF8      0          // UTF-8; no byte-order mark written, one skipped when read
#define TOVARIN_UTF8_BOM  1          // UTF-8 with its byte-order mark EF BB BF
#define TOVARIN_UTF16     2          // UTF-16LE with its byte-order mark FF FE
#define TOVARIN_CODEPAGE  3          // 8-bit text in a code page, no mark

// Whole arrays of simple structures in one call each: MQL5 passes the address of the first record.
// A structure of your own with simple fields only (no strings, dynamic arrays or objects) crosses
// the same way: declare these two imports with it in your program, and pass the byte count,
// ArraySize(records) * sizeof(record).
#import "Tovarin.dll"
ulong FileWriteVoid(long handle, const MqlRates &records[], ulong bytes);
ulong FileReadVoid(long handle, MqlRates &records[], ulong bytes);
ulong FileWriteVoid(long handle, const MqlTick &records[], ulong bytes);
ulong FileReadVoid(long handle, MqlTick &records[], ulong bytes);
#import

// Whether name is a device name as the library spells it, compared whole and case-sensitively.
bool TovarinIsReservedName(const string name)
  {
   string reserved[] = {"con", "nul", "prn", "AUX", "COM1", "COM2", "COM3", "COM4", "COM5", "COM6", "COM7",
                        "COM8", "COM9", "LPT1", "LPT2", "LPT3", "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};
   for(int i = 0; i < ArraySize(reserved); i++)
      if(name == reserved[i])
         return(true);
   return(false);
  }

// Why the library refuses path for an open, create, copy, move, delete or link, in the order in
// which it checks; "" when it takes the path. No DLL call, no box: check in OnInit, before any call.
string TovarinPathProblem(const string path)
  {
   int n = StringLen(path);
   if(n == 0)
      return("no path");
   int colon = -1;
   for(int i = 0; i < n; i++)
      if(StringGetCharacter(path, i) == ':')
         colon = i;
   for(int i = colon + 1; i < n; i++)
      if(StringFind(":/*?\"<>|", StringSubstr(path, i, 1)) >= 0)
         return("the forbidden character '" + StringSubstr(path, i, 1) + "' at position " + i + " (after the drive's colon, none of : / * ? \" < > |)");
   ushort last = StringGetCharacter(path, n - 1);
   if(last == '.' || last == ' ')
      return("a dot or a space at the end");
   if(n >= 256 && StringFind(path, "\\\\?\\") != 0)
      return("longer than 255 characters (the long form \\\\?\\D:\\... has no limit)");
   for(int from = 0, end = 0; end >= 0; from = end + 1)
     {
      end = StringFind(path, "\\", from);
      string name = end < 0 ? StringSubstr(path, from) : StringSubstr(path, from, end - from);
      if(TovarinIsReservedName(name))
         return("the reserved name \"" + name + "\"");
     }
   ushort drive = StringGetCharacter(path, 0);
   bool onDrive = ((drive >= 'A' && drive <= 'Z') || (drive >= 'a' && drive <= 'z')) && StringFind(path, ":\\") == 1;
   if(!onDrive && StringFind(path, "\\\\") != 0)
      return("not absolute (give D:\\... or \\\\server\\share\\...)");
   return("");
  }

//+------------------------------------------------------------------+
//| A file opened through Tovarin.dll, closed by Close or at the     |
//| latest by the destructor. Results: true, or a count of elements  |
//| or lines; false or -1 after a failure.                           |
//+------------------------------------------------------------------+
class CTovarinFile
  {
private:
   long              m_handle;
   int               m_encoding;
   bool              m_crlf;
   uint              m_codepage;
   uchar             m_bytes[];     // text on its way to and from the file, kept between calls
   ushort            m_units[];     // UTF-16 text read

   bool              Ready(void)
     {
      if(m_handle != TOVARIN_NULL_HANDLE)
         return(true);
      Print("Tovarin: CTovarinFile: no file is open");
      return(false);
     }
   // The count of elements from start on (WHOLE_ARRAY: to the end) when they all lie inside an array
   // of size elements and a file is open; -1 with a line in the log otherwise.
   int               Slice(const int size, const int start, const int count)
     {
      int n = count == WHOLE_ARRAY ? size - start : count;
      if(start >= 0 && start <= size && n >= 0 && n <= size - start)
         return(Ready() ? n : -1);
      PrintFormat("Tovarin: CTovarinFile: %d elements from %d on are not inside an array of %d", count, start, size);
      return(-1);
     }
   int               Count(const ulong result) { return(result == TOVARIN_FAILED_COUNT ? -1 : (int)result); }
   // Skips a byte-order mark at the start of the text just read, which then sets the encoding.
   int               Mark(const int end)
     {
      if(end >= 3 && m_bytes[0] == 0xEF && m_bytes[1] == 0xBB && m_bytes[2] == 0xBF)
        {
         m_encoding = TOVARIN_UTF8;
         return(3);
        }
      if(end < 2 || m_bytes[0] != 0xFF || m_bytes[1] != 0xFE)
         return(0);
      m_encoding = TOVARIN_UTF16;
      return(2);
     }
   // m_bytes[begin .. end - 1] as text in the encoding; false when there is no memory for it.
   bool              Decode(const int begin, const int end, string &text)
     {
      int n = (end - begin) / 2;
      text = "";
      if(m_encoding != TOVARIN_UTF16 && end > begin)
         text = CharArrayToString(m_bytes, begin, end - begin, m_encoding == TOVARIN_CODEPAGE ? m_codepage : CP_UTF8);
      if(m_encoding != TOVARIN_UTF16 || n == 0)
         return(true);
      if(ArrayResize(m_units, n) != n)
         return(NoMemory(n) > 0);
      for(int i = 0; i < n; i++)
         m_units[i] = (ushort)(m_bytes[begin + 2 * i] | (m_bytes[begin + 2 * i + 1] << 8));
      text = ShortArrayToString(m_units, 0, n);
      return(true);
     }
   // Lines of text: one per LF, less a CR before it, and the text after the last LF; lines is
   // resized once. The number of lines, -1 when lines cannot grow.
   int               Split(const string &text, string &lines[])
     {
      int length = StringLen(text), n = 0;
      for(int at = StringFind(text, "\n"); at >= 0; at = StringFind(text, "\n", at + 1))
         n++;
      if(length > 0 && StringGetCharacter(text, length - 1) != '\n')
         n++;
      if(ArrayResize(lines, n) != n)
         return(NoMemory(n));
      for(int k = 0, from = 0; k < n; k++)
        {
         int at = StringFind(text, "\n", from);
         int stop = at < 0 ? length : at;
         int cut = at > from && StringGetCharacter(text, at - 1) == '\r' ? 1 : 0;
         lines[k] = stop - from - cut > 0 ? StringSubstr(text, from, stop - from - cut) : "";
         from = stop + 1;
        }
      return(n);
     }
   int               NoMemory(const int n)
     {
      TovarinResizeFailed("CTovarinFile", n);
      return(-1);
     }
public:
                     CTovarinFile(void) { m_handle = TOVARIN_NULL_HANDLE; SetText(TOVARIN_UTF8); }
                    ~CTovarinFile(void) { Close(); }
   long              Handle(void) { return(m_handle); }

   // Opens path with MQL5's FILE_READ, FILE_WRITE, FILE_SHARE_READ and FILE_SHARE_WRITE as FileOpen
   // takes them: reading alone opens an existing file, writing alone empties or makes it, both open
   // it and make it when missing. Missing folders are made. Closes the file open before.
   bool              Open(const string path, const int flags)
     {
      Close();
      string why = TovarinPathProblem(path);
      if(why != "" || (flags & (FILE_READ | FILE_WRITE)) == 0)
        {
         Print("Tovarin: CTovarinFile cannot open ", path, ": ", why != "" ? why : "neither FILE_READ nor FILE_WRITE");
         return(false);
        }
      bool reading = (flags & FILE_READ) != 0, writing = (flags & FILE_WRITE) != 0;
      uint access = (reading ? TOVARIN_GENERIC_READ : 0) | (writing ? TOVARIN_GENERIC_WRITE : 0);
      uint share = ((flags & FILE_SHARE_READ) != 0 ? TOVARIN_SHARE_READ : 0) | ((flags & FILE_SHARE_WRITE) != 0 ? TOVARIN_SHARE_WRITE : 0);
      if(!writing)
         m_handle = FileOpenExistingW(path, access, share);
      else
         m_handle = reading ? FileOpenAlwaysW(path, access, share) : FileCreateAlwaysW(path, access, share);
      return(m_handle != TOVARIN_NULL_HANDLE);
     }
   void              Close(void)
     {
      if(m_handle != TOVARIN_NULL_HANDLE)
         FileCloseHandle(m_handle);
      m_handle = TOVARIN_NULL_HANDLE;
     }
   // The size in bytes at any size (FileGetSize keeps the low 32 bits only); 0 after a failure.
   ulong             Size(void)
     {
      long pointer;
      long size = Ready() ? TovarinSize(m_handle, pointer) : -1;
      return(size < 0 ? 0 : (ulong)size);
     }
   ulong             Tell(void)
     {
      long pointer = Ready() ? TovarinPosition(m_handle) : -1;
      return(pointer < 0 ? 0 : (ulong)pointer);
     }
   // Moves the pointer to offset from SEEK_SET, SEEK_CUR or SEEK_END; before the start means to it.
   bool              Seek(const long offset, const ENUM_FILE_POSITION origin)
     {
      long pointer = 0;
      long from = !Ready() ? -1 : origin == SEEK_CUR ? TovarinPosition(m_handle) : origin == SEEK_END ? TovarinSize(m_handle, pointer) : 0;
      return(from >= 0 && TovarinSeek(m_handle, from + offset));
     }
   void              Flush(void) { if(Ready()) FileFlushApply(m_handle); }

   // One value's raw little-endian bytes.
   bool              Write(const bool value) { return(Ready() && FileWriteBoolean(m_handle, value) > 0); }
   bool              Write(const char value) { return(Ready() && FileWriteChar(m_handle, value) > 0); }
   bool              Write(const uchar value) { return(Ready() && FileWriteUChar(m_handle, value) > 0); }
   bool              Write(const short value) { return(Ready() && FileWriteShort(m_handle, value) > 0); }
   bool              Write(const ushort value) { return(Ready() && FileWriteUShort(m_handle, value) > 0); }
   bool              Write(const int value) { return(Ready() && FileWriteInt(m_handle, value) > 0); }
   bool              Write(const uint value) { return(Ready() && FileWriteUInt(m_handle, value) > 0); }
   bool              Write(const long value) { return(Ready() && FileWriteInt64(m_handle, value) > 0); }
   bool              Write(const ulong value) { return(Ready() && FileWriteUInt64(m_handle, value) > 0); }
   bool              Write(const float value) { return(Ready() && FileWriteFlt(m_handle, value) > 0); }
   bool              Write(const double value) { return(Ready() && FileWriteDbl(m_handle, value) > 0); }
   // One value; false at the end of the file (a box) or with no file open. A read of one element,
   // since the single-value reads return 0 after a failure, which a value can be.
   bool              Read(bool &value) { bool a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(char &value) { char a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(uchar &value) { uchar a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(short &value) { short a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(ushort &value) { ushort a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(int &value) { int a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(uint &value) { uint a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(long &value) { long a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(ulong &value) { ulong a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(float &value) { float a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }
   bool              Read(double &value) { double a[1]; if(ReadArray(a) != 1) return(false); value = a[0]; return(true); }

   // Elements start .. start + count - 1 (count WHOLE_ARRAY: to the end) in one call, in memory order
   // (index 0 is the oldest bar of an array set as series). A slice not inside the array is refused
   // before any DLL call. The number of elements; -1 after a failure.
   int               WriteArray(const bool &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteBoolArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const char &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteCharArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const uchar &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteUCharArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const short &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteShortArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const ushort &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteUShortArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const int &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteIntArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const uint &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteUIntArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const long &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteLongArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const ulong &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteULongArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const float &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteFloatArray(m_handle, a, ArraySize(a), start, n))); }
   int               WriteArray(const double &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileWriteDoubleArray(m_handle, a, ArraySize(a), start, n))); }
   // The same slice filled from the file: resize a dynamic array first.
   int               ReadArray(bool &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadBoolArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(char &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadCharArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(uchar &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadUCharArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(short &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadShortArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(ushort &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadUShortArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(int &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadIntArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(uint &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadUIntArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(long &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadLongArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(ulong &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadULongArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(float &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadFloatArray(m_handle, a, ArraySize(a), start, n))); }
   int               ReadArray(double &a[], const int start = 0, const int count = WHOLE_ARRAY) { int n = Slice(ArraySize(a), start, count); return(n <= 0 ? n : Count(FileReadDoubleArray(m_handle, a, ArraySize(a), start, n))); }

   // Whole arrays of bars and ticks, 60 bytes a record as MQL5 lays them out, in one call each.
   int               WriteArray(const MqlRates &records[]) { int n = Slice(ArraySize(records), 0, WHOLE_ARRAY); ulong bytes = (ulong)n * sizeof(MqlRates); return(n <= 0 ? n : FileWriteVoid(m_handle, records, bytes) == bytes ? n : -1); }
   int               ReadArray(MqlRates &records[]) { int n = Slice(ArraySize(records), 0, WHOLE_ARRAY); ulong bytes = (ulong)n * sizeof(MqlRates); return(n <= 0 ? n : FileReadVoid(m_handle, records, bytes) == bytes ? n : -1); }
   int               WriteArray(const MqlTick &records[]) { int n = Slice(ArraySize(records), 0, WHOLE_ARRAY); ulong bytes = (ulong)n * sizeof(MqlTick); return(n <= 0 ? n : FileWriteVoid(m_handle, records, bytes) == bytes ? n : -1); }
   int               ReadArray(MqlTick &records[]) { int n = Slice(ArraySize(records), 0, WHOLE_ARRAY); ulong bytes = (ulong)n * sizeof(MqlTick); return(n <= 0 ? n : FileReadVoid(m_handle, records, bytes) == bytes ? n : -1); }

   // The text of WriteLines and ReadLines: TOVARIN_UTF8 (the default), TOVARIN_UTF8_BOM,
   // TOVARIN_UTF16 or TOVARIN_CODEPAGE with the code page; lines written end with CR LF, or LF.
   void              SetText(const int encoding, const bool crlf = true, const uint codepage = CP_ACP)
     {
      m_encoding = encoding;
      m_crlf = crlf;
      m_codepage = codepage;
     }
   // Writes every string of lines as a line, with the byte-order mark first at the start of the file
   // for TOVARIN_UTF8_BOM and TOVARIN_UTF16, in one DLL call per TOVARIN_LINES_BATCH characters, never
   // splitting a line between calls. The number of lines; -1 after a failure.
   int               WriteLines(const string &lines[])
     {
      string mark = "";
      if(!Ready())
         return(-1);
      if((m_encoding == TOVARIN_UTF16 || m_encoding == TOVARIN_UTF8_BOM) && TovarinPosition(m_handle) == 0)
        {
         mark = " ";
         StringSetCharacter(mark, 0, 0xFEFF);
        }
      return(TovarinPutLines(m_handle, lines, m_crlf ? "\r\n" : "\n", m_encoding == TOVARIN_UTF16,
                             m_encoding == TOVARIN_CODEPAGE ? m_codepage : CP_UTF8, mark, m_bytes));
     }
   bool              WriteLine(const string line)
     {
      string one[1];
      one[0] = line;
      return(WriteLines(one) == 1);
     }
   // Reads the rest of the file, in one DLL call, into lines (resized once). A last line without
   // line end is a line; with follow, for a file that another program appends to, it is left with
   // the pointer at its start for the next call, so no line is lost or split. The number of lines;
   // -1 after a failure.
   int               ReadLines(string &lines[], const bool follow = false)
     {
      long pointer;
      long size = Ready() ? TovarinSize(m_handle, pointer) : -1;
      if(size < 0)
         return(-1);
      if(size - pointer > INT_MAX)
        {
         Print("Tovarin: CTovarinFile::ReadLines reads less than 2 GiB at once");
         return(-1);
        }
      int end = size > pointer ? (int)(size - pointer) : 0;
      if(ArraySize(m_bytes) < end && ArrayResize(m_bytes, end) != end)
         return(NoMemory(end));
      if(end > 0 && FileReadVoid(m_handle, m_bytes, end) != (ulong)end)
         return(-1);
      int begin = pointer == 0 ? Mark(end) : 0;
      int step = m_encoding == TOVARIN_UTF16 ? 2 : 1;
      int last = end - (end - begin) % step;
      while(follow && last > begin && (m_bytes[last - step] != 10 || m_bytes[last - 1] != (step == 2 ? 0 : 10)))
         last -= step;
      if(last < end && FileSetPointerCurrent(m_handle, last - end) < 0)
         return(-1);
      string text;
      int n = Decode(begin, last, text) ? Split(text, lines) : -1;
      if(n < 0)
         TovarinSeek(m_handle, pointer); // no memory for the lines: they stay for the next call
      return(n);
     }
  };
//+------------------------------------------------------------------+
