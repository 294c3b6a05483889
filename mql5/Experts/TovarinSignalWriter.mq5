//+------------------------------------------------------------------+
//|                                          TovarinSignalWriter.mq5 |
//| Writes a CSV line for every new bar of the chart to a file       |
//| outside the sandbox; TovarinSignalFollower.mq5, in this or       |
//| another terminal, follows the file as it grows.                  |
//+------------------------------------------------------------------+
#property version     "1.00"
#property description "Tovarin.dll example: CSV signals to a file that another program follows"

#include <TovarinFile.mqh>

input string InpPath = "";   // CSV file (empty: common folder\Tovarin\signals.csv)

// UTF-8 without byte-order mark, CR LF: time (seconds since 1970),symbol,signal,close
CTovarinFile g_file;         // closed in OnDeinit, or by its destructor
datetime     g_last = 0;     // the last bar written

int OnInit()
  {
   string path = InpPath != "" ? InpPath : TerminalInfoString(TERMINAL_COMMONDATA_PATH) + "\\Tovarin\\signals.csv";
   string why = TovarinPathProblem(path);
   if(why != "")
     {
      Print("Signal file ", path, ": ", why);
      return(INIT_PARAMETERS_INCORRECT);
     }
   // Readers may open the file while it is written: share reading, keep writing to this program.
   if(!g_file.Open(path, FILE_READ | FILE_WRITE | FILE_SHARE_READ))
      return(INIT_FAILED);
   g_file.Seek(0, SEEK_END);
   if(g_file.Tell() == 0)
      g_file.WriteLine("time,symbol,signal,close");
   return(INIT_SUCCEEDED);
  }

void OnDeinit(const int reason)
  {
   g_file.Close();
  }

// One line per closed bar, whole in one DLL call, so that a follower never sees half of it.
void OnTick()
  {
   MqlRates bars[];
   if(CopyRates(_Symbol, _Period, 1, 2, bars) != 2 || bars[1].time == g_last)
      return;
   g_last = bars[1].time;
   string signal = bars[1].close > bars[0].close ? "buy" : "sell";
   g_file.WriteLine("" + (long)bars[1].time + "," + _Symbol + "," + signal + "," + DoubleToString(bars[1].close, _Digits));
  }
//+------------------------------------------------------------------+
