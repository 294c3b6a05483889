//+------------------------------------------------------------------+
//|                                               TovarinExample.mq5 |
//| Exports the last bars of the chart to a binary file outside the  |
//| sandbox, reads them back and compares, hands a copy to another   |
//| program's folder and cleans up.                                  |
//+------------------------------------------------------------------+
#property version     "1.00"
#property description "Tovarin.dll example: bars to a binary file outside the sandbox and back"
#property script_show_inputs

#include <Tovarin.mqh>

input int    InpBars     = 1000;  // Bars to export
input string InpInbox    = "";    // Another program's folder (empty: common folder\Tovarin\Inbox)
input bool   InpKeepCopy = true;  // Leave the copy for the other program

// File layout, little-endian, no padding:
//   uint magic, int version, int symbol length, symbol (UTF-16), int bars,
//   then one column per field: time[], open[], high[], low[], close[] (long/double),
//   tick_volume[] (long), spread[] (int), real_volume[] (long).
#define BARS_MAGIC       ((uint)0x53524142)   // "BARS"
#define BARS_VERSION     1
#define BYTES_PER_BAR    60                   // 8 + 4 * 8 + 8 + 4 + 8

//+------------------------------------------------------------------+
//| Bars split into columns, the form the typed array functions take |
//+------------------------------------------------------------------+
struct BarColumns
  {
   long              time[];
   double            open[];
   double            high[];
   double            low[];
   double            close[];
   long              tickVolume[];
   int               spread[];
   long              realVolume[];

   void              Resize(const int n)
     {
      ArrayResize(time, n);
      ArrayResize(open, n);
      ArrayResize(high, n);
      ArrayResize(low, n);
      ArrayResize(close, n);
      ArrayResize(tickVolume, n);
      ArrayResize(spread, n);
      ArrayResize(realVolume, n);
     }
  };

//+------------------------------------------------------------------+
//| Writes the header and the columns; false after the first failure |
//+------------------------------------------------------------------+
bool WriteBars(const string path, const MqlRates &rates[])
  {
   int n = ArraySize(rates);
   BarColumns c;
   c.Resize(n);
   for(int i = 0; i < n; i++)
     {
      c.time[i]       = (long)rates[i].time;
      c.open[i]       = rates[i].open;
      c.high[i]       = rates[i].high;
      c.low[i]        = rates[i].low;
      c.close[i]      = rates[i].close;
      c.tickVolume[i] = rates[i].tick_volume;
      c.spread[i]     = rates[i].spread;
      c.realVolume[i] = rates[i].real_volume;
     }

   long file = FileCreateAlwaysW(path, TOVARIN_GENERIC_READ | TOVARIN_GENERIC_WRITE, TOVARIN_SHARE_READ);
   if(file == TOVARIN_NULL_HANDLE)
     {
      PrintFormat("Cannot create %s", path);
      return(false);
     }
   ulong bars = (ulong)n;
   int   symbolLength = StringLen(_Symbol);
   bool  ok = FileWriteUInt(file, BARS_MAGIC) == 4
              && FileWriteInt(file, BARS_VERSION) == 4
              && FileWriteInt(file, symbolLength) == 4
              && FileWriteStringW(file, _Symbol) == 2 * symbolLength
              && FileWriteInt(file, n) == 4
              && FileWriteLongArray(file, c.time, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteDoubleArray(file, c.open, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteDoubleArray(file, c.high, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteDoubleArray(file, c.low, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteDoubleArray(file, c.close, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteLongArray(file, c.tickVolume, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteIntArray(file, c.spread, bars, 0, TOVARIN_TO_END) == bars
              && FileWriteLongArray(file, c.realVolume, bars, 0, TOVARIN_TO_END) == bars;
   if(ok)
      FileFlushApply(file);
   FileCloseHandle(file);
   if(!ok)
      PrintFormat("Writing %s failed", path);
   return(ok);
  }

//+------------------------------------------------------------------+
//| Reads a file written by WriteBars back into rates                |
//+------------------------------------------------------------------+
bool ReadBars(const string path, MqlRates &rates[])
  {
   long file = FileOpenExistingW(path, TOVARIN_GENERIC_READ, TOVARIN_SHARE_READ);
   if(file == TOVARIN_NULL_HANDLE)
     {
      PrintFormat("Cannot open %s", path);
      return(false);
     }
   ulong  size = FileGetSize(file);
   bool   ok = FileReadUInt(file) == BARS_MAGIC && FileReadInt(file) == BARS_VERSION;
   int    symbolLength = ok ? FileReadInt(file) : 0;
   ok = ok && symbolLength > 0 && symbolLength <= 64;
   string symbol = ok ? FileReadStringW(file, (ulong)symbolLength) : "";
   int    n = ok ? FileReadInt(file) : 0;
   ok = ok && symbol == _Symbol && n > 0
        && size == (ulong)(16 + 2 * symbolLength) + (ulong)n * BYTES_PER_BAR;

   BarColumns c;
   if(ok)
     {
      c.Resize(n);
      ulong bars = (ulong)n;
      ok = FileReadLongArray(file, c.time, bars, 0, bars) == bars
           && FileReadDoubleArray(file, c.open, bars, 0, bars) == bars
           && FileReadDoubleArray(file, c.high, bars, 0, bars) == bars
           && FileReadDoubleArray(file, c.low, bars, 0, bars) == bars
           && FileReadDoubleArray(file, c.close, bars, 0, bars) == bars
           && FileReadLongArray(file, c.tickVolume, bars, 0, bars) == bars
           && FileReadIntArray(file, c.spread, bars, 0, bars) == bars
           && FileReadLongArray(file, c.realVolume, bars, 0, bars) == bars
           && FileGetPointer(file) == (long)size;
     }
   FileCloseHandle(file);
   if(!ok)
     {
      PrintFormat("%s is not a complete bar file", path);
      return(false);
     }

   ArrayResize(rates, n);
   for(int i = 0; i < n; i++)
     {
      rates[i].time        = (datetime)c.time[i];
      rates[i].open        = c.open[i];
      rates[i].high        = c.high[i];
      rates[i].low         = c.low[i];
      rates[i].close       = c.close[i];
      rates[i].tick_volume = c.tickVolume[i];
      rates[i].spread      = c.spread[i];
      rates[i].real_volume = c.realVolume[i];
     }
   return(true);
  }

//+------------------------------------------------------------------+
//| Index of the first bar that differs, or -1                       |
//+------------------------------------------------------------------+
int FirstDifference(const MqlRates &a[], const MqlRates &b[])
  {
   if(ArraySize(a) != ArraySize(b))
      return(0);
   for(int i = 0; i < ArraySize(a); i++)
      if(a[i].time != b[i].time || a[i].open != b[i].open || a[i].high != b[i].high
         || a[i].low != b[i].low || a[i].close != b[i].close || a[i].tick_volume != b[i].tick_volume
         || a[i].spread != b[i].spread || a[i].real_volume != b[i].real_volume)
         return(i);
   return(-1);
  }

//+------------------------------------------------------------------+
//| The text with every character that Windows forbids in a file     |
//| name replaced by an underscore                                   |
//+------------------------------------------------------------------+
string NameForFile(const string text)
  {
   ushort forbidden[] = {47, 92, 58, 42, 63, 34, 60, 62, 124};   // slash, backslash, : * ? quote < > |
   string part = text;
   for(int i = 0; i < StringLen(part); i++)
      for(int j = 0; j < ArraySize(forbidden); j++)
         if(StringGetCharacter(part, i) == forbidden[j])
            StringSetCharacter(part, i, '_');
   return(part);
  }

//+------------------------------------------------------------------+
//| Script program start function                                    |
//+------------------------------------------------------------------+
void OnStart()
  {
   if(!MQLInfoInteger(MQL_DLLS_ALLOWED))
     {
      Print("Allow DLL imports for this script: it needs Tovarin.dll");
      return;
     }
   MqlRates rates[];
   int copied = CopyRates(_Symbol, _Period, 0, InpBars, rates);
   if(copied <= 0)
     {
      PrintFormat("CopyRates failed, error %d", GetLastError());
      return;
     }

   string period = EnumToString(_Period);
   StringReplace(period, "PERIOD_", "");
   // A symbol such as "EUR/USD" or "US500:cash" holds characters that no file name may hold.
   string name   = NameForFile(_Symbol) + "_" + period + ".bars";
   string common = TerminalInfoString(TERMINAL_COMMONDATA_PATH) + "\\Tovarin";
   string path   = common + "\\Export\\" + name;
   string inbox  = InpInbox != "" ? InpInbox : common + "\\Inbox";
   string copy   = inbox + "\\" + name;

   // 1. Export: the open function creates the missing folders.
   if(!WriteBars(path, rates))
      return;
   PrintFormat("%d bars written to %s", copied, path);

   // 2. Read back and compare.
   MqlRates back[];
   if(!ReadBars(path, back))
      return;
   int differs = FirstDifference(rates, back);
   if(differs >= 0)
     {
      PrintFormat("Bar %d differs after the round trip", differs);
      return;
     }
   Print("Read back: identical");

   // 3. Hand a copy to the other program; check it there through the 8-bit function.
   if(FileCopyW(path, copy) != 1)
     {
      PrintFormat("Copy to %s failed", copy);
      return;
     }
   uchar copyAnsi[];
   TovarinAnsi(copy, copyAnsi);
   if(FileCheckA(copyAnsi) != 1)
      PrintFormat("%s is not visible after the copy", copy);
   else
      PrintFormat("Copied to %s", copy);

   // 4. Clean up.
   if(FileDeleteW(path) != 1)
      PrintFormat("Cannot delete %s", path);
   if(!InpKeepCopy && FileDeleteW(copy) != 1)
      PrintFormat("Cannot delete %s", copy);
  }
//+------------------------------------------------------------------+
