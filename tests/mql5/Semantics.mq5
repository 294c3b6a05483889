// Where MQL5's rules differ from C++'s, as the kit's code meets them; KitTest runs each function.
// Strings are values; a new dynamic array is empty; ArrayResize refuses a static array with -1;
// narrowing keeps the low bits and a double converts to an integer by truncation; a text converted
// to bytes counts its terminating zero.
string Values(const int value, const double real, const string text)
  {
   string a = "x";
   string b = a;
   b += "y";
   int fixed[3];
   int dynamic[];
   string sizes = " " + ArraySize(dynamic);
   sizes = sizes + " " + ArrayResize(dynamic, 5, 100);
   sizes = sizes + " " + ArrayResize(fixed, 5) + " " + ArraySize(fixed);
   uchar bytes[];
   int n = StringToCharArray(text, bytes, 0, WHOLE_ARRAY, CP_UTF8);
   string utf8 = " " + n + " " + CharArrayToString(bytes, 0, WHOLE_ARRAY, CP_UTF8);
   return(a + b + sizes + " " + (char)value + " " + (uchar)value + " " + (int)real + utf8);
  }

// An index out of range is a critical error that stops the program.
int Element(const int index)
  {
   int values[] = {1, 2};
   return(values[index]);
  }
