// Where MQL5's rules differ from C++'s, as the kit's code meets them; KitTest runs each function.
string CopiedString()
  {
   string a = "x";
   string b = a;
   b += "y";
   return(a + " " + b);
  }

// A new dynamic array is empty; a static one keeps its size and ArrayResize refuses it with -1.
string ResizedArrays()
  {
   int fixed[3];
   int dynamic[];
   string sizes = "" + ArraySize(dynamic);
   int resized = ArrayResize(dynamic, 5, 100);
   return(sizes + " " + resized + " " + ArrayResize(fixed, 5) + " " + ArraySize(fixed));
  }

// Narrowing keeps the low bits; a double converts to an integer by truncation.
string Narrowed(const int value, const double real)
  {
   char c = (char)value;
   uchar u = (uchar)value;
   return("" + c + " " + u + " " + (int)real);
  }

string Utf8RoundTrip(const string text)
  {
   uchar bytes[];
   int n = StringToCharArray(text, bytes, 0, WHOLE_ARRAY, CP_UTF8);
   return("" + n + " " + CharArrayToString(bytes, 0, WHOLE_ARRAY, CP_UTF8));
  }

// An index out of range is a critical error that stops the program.
int Element(const int index)
  {
   int values[] = {1, 2};
   return(values[index]);
  }
