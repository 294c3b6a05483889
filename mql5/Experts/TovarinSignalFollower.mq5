//+------------------------------------------------------------------+
//|                                        TovarinSignalFollower.mq5 |
//| Follows the CSV file of TovarinSignalWriter.mq5 (or of any       |
//| program that appends lines to a file) and prints each new line.  |
//+------------------------------------------------------------------+
#property version     "1.00"
#property description "Tovarin.dll example: follows a CSV file that another program appends to"

#include <TovarinFile.mqh>

input string InpPath = "";   // CSV file (empty: common folder\Tovarin\signals.csv)

CTovarinFile g_file;
string       g_path;

int OnInit()
  {
   g_path = InpPath != "" ? InpPath : TerminalInfoString(TERMINAL_COMMONDATA_PATH) + "\\Tovarin\\signals.csv";
   string why = TovarinPathProblem(g_path);
   if(why != "")
     {
      Print("Signal file ", g_path, ": ", why);
      return(INIT_PARAMETERS_INCORRECT);
     }
   EventSetTimer(1);
   return(INIT_SUCCEEDED);
  }

void OnDeinit(const int reason)
  {
   g_file.Close();
  }

// Opens the file once it exists, sharing writing with its writer, then reads the lines completed
// since the last call: a line still being written stays in the file for the next call.
void OnTimer()
  {
   if(g_file.Handle() == TOVARIN_NULL_HANDLE
      && (FileCheckW(g_path) != 1 || !g_file.Open(g_path, FILE_READ | FILE_SHARE_READ | FILE_SHARE_WRITE)))
      return;
   string lines[];
   int n = g_file.ReadLines(lines, true);
   for(int i = 0; i < n; i++)
      if(lines[i] != "time,symbol,signal,close")
         Print("Signal: ", lines[i]);
  }
//+------------------------------------------------------------------+
