//+------------------------------------------------------------------+
//|                                               TovarinRecords.mq5 |
//| Writes the chart's last bars and ticks to one binary file        |
//| outside the sandbox, each array in one call, as MQL5 lays the    |
//| records out in memory.                                           |
//+------------------------------------------------------------------+
#property version     "1.00"
#property description "Tovarin.dll example: bars and ticks to a binary file in one call each"
#property script_show_inputs

#include <TovarinFile.mqh>

input int InpBars  = 1000;   // Bars
input int InpTicks = 1000;   // Ticks

// The file, little-endian, no padding, no header beyond the counts:
//   int bars, then bars records of 60 bytes (MqlRates):
//     long time (seconds since 1970), double open, high, low, close, long tick_volume, int spread,
//     long real_volume
//   int ticks, then ticks records of 60 bytes (MqlTick):
//     long time (seconds since 1970), double bid, ask, last, ulong volume, long time_msc
//     (milliseconds since 1970), uint flags, double volume_real
// Python: numpy.fromfile with dtype [("time","<i8"),("open","<f8"),("high","<f8"),("low","<f8"),
// ("close","<f8"),("tick_volume","<i8"),("spread","<i4"),("real_volume","<i8")] after the count;
// C: #pragma pack(push, 1) structures with the same fields.
void OnStart()
  {
   MqlRates rates[];
   MqlTick  ticks[];
   int bars = CopyRates(_Symbol, _Period, 0, InpBars, rates);
   int count = CopyTicks(_Symbol, ticks, COPY_TICKS_ALL, 0, InpTicks);
   if(bars < 0 || count < 0)
     {
      PrintFormat("No history: %d bars, %d ticks", bars, count);
      return;
     }
   string path = TerminalInfoString(TERMINAL_COMMONDATA_PATH) + "\\Tovarin\\records.bin";
   CTovarinFile file;
   if(!file.Open(path, FILE_WRITE))
      return;
   if(file.Write(bars) && file.WriteArray(rates) == bars && file.Write(count) && file.WriteArray(ticks) == count)
      PrintFormat("%d bars and %d ticks written to %s", bars, count, path);
  }
//+------------------------------------------------------------------+
