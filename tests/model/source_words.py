"""The words that random sources and command lines are made of."""

from zirpa_tables import OPTAB

LINE_LIMIT = 4093

BRANCHES = [word for word, (_, _, coder) in OPTAB.items() if coder == 2]
INHERENT = [word for word, (_, _, coder) in OPTAB.items() if coder == 0]
WITH_OPERAND = [word for word, (_, _, coder) in OPTAB.items() if coder in (1, 3, 4, 7)]
MNEMONICS = list(OPTAB)

NAMES = [b"L", b"L1", b"L2", b"loop", b"Loop", b"LOOP", b"AB", b"BA", b"_t", b"n$", b"p.q", b"W",
         b"x1", b"CC1", b"SPX", b"sp_", b"A$", b"X.1", b"Y", b"A", b"cc", b"main", b"equ", b"nop",
         b"if", b"Q" * 127, b"Q" * 128, b"Q" * 129 + b"R", b"z" * 126]
REGISTERS = [b"A", b"X", b"Y", b"SP", b"CC", b"a", b"x", b"y", b"sp", b"Sp", b"cc", b"cC"]
REGISTER_PAIRS = [b"A,CC", b"CC,A", b"X,Y", b"Y,X", b"X,SP", b"SP,X", b"Y,SP", b"SP,Y"]

BYTE_BOUNDS = [0, 1, 2, 5, 7, 9, 10, 15, 16, 31, 32, 33, 63, 64, 65, 100, 127, 128, 200, 254, 255]
WIDE_BOUNDS = [256, 257, 300, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0xFFFFFF, 0x1000000, 0x7FFFFFFF,
               0x80000000, 0xFFFFFFFE, 0xFFFFFFFF, 0x100000000, 0x180000005, 0x7FFFFFFFFFFFFFFF,
               0x8000000000000000, 0xFFFFFFFFFFFFFFFF, 0x1FFFFFFFFFFFFFFFF, 10 ** 30]
ADDRESSES = [0, 0x10, 0x80, 0xF0, 0xFE, 0xFF, 0x100, 0x101, 0x7FFF, 0xFFF0, 0xFFFE, 0xFFFF,
             0x10000, 0x10001, 0xFFFFE0, 0xFFFFFF, 0x1000000, 0x12345678, 0x7FFFFFFF, 0x80000000,
             0x80000001, 0xFFFFFFE0, 0xFFFFFFFF]

BINARY = b"+ - * / % %% == != <= >= && || & | ^ << >>".split()
UNARY = b"- ! ~ -- !! ~~ -~ !-".split()
ODD_TOKENS = (b"< > = => =< ! ~ : ; . , ? @ # \" ' '' ''' $ % %2 %% ( ) () (( )) [ ] { } \\ ` ** "
              b"12AB $G $1G %102 0x10 0b1 'ab' 1(2) (1+) 10/0 10%0 5%%101 1<2 1>2 "
              b"A X SP CC ,X #").split()

GOOD_OPERANDS = [b"#%b", b"%b", b"%b,SP", b"%b,X", b"%b,Y", b"%b", b"#%b"]
GOOD_INSTRUCTIONS = [b"LDA %b,X", b"STA %b,Y", b"ADCA #%b", b"CLR %b,SP", b"LEAX %b,SP", b"LDX %b",
                     b"JMP %b", b"CMPSP #%b", b"LEASP %b,Y", b"ORCC #%b", b"ASL %b"]
FIXED_OPERANDS = [b"A,X", b"A,Y", b",X+", b",X-", b",+X", b",-X", b",Y+", b",Y-", b",+Y", b",-Y"]
ODD_OPERANDS = [b"", b"#", b"#,", b",", b",X", b",Y", b"X+", b"X", b"A", b"SP", b"CC", b"5,A",
                b"A,SP", b"A,A", b",SP+", b",-SP", b"%b,", b"%b,,X", b"%b,X+", b"%b,XX", b"%b,S",
                b"*", b"*+2", b"**", b"*,X", b"#*", b"#%b,X", b"%b;x", b"%b:", b"%b)", b"(%b",
                b"%b ,X", b"%b, X", b"# %b", b"A,%b", b"A ,X", b",%b", b"%b\"", b"%b.5", b"%b\x80"]

STRING_PIECES = [b"\\t", b"\\n", b"\\0", b"\\65", b"\\q", b"\\\\", b'\\"', b" ", b"'", b";",
                 b"\xe9", b"\\\xe9", b"\x01"]
ODD_CONDITIONS = [b"#if", b"# #if", b"#  ifdef", b"#IFDEF", b"#", b"##", b"#elsif", b".if",
                  b"#\x01else", b"# endif", b"#endif;", b"##IF"]
WORDS_OF_CONDITIONS = b"##if #ifdef #ifndef #elif #else #endif #define #error".split()
STAB_WORDS = [b"init", b"func", b"dir", b"file", b"stmt", b"expr", b"exec", b"type", b"sym L",
              b"sym V", b"sym F", b"sym v", b"sym f", b"sym Q", b"symV", b"sym",
              b"Exec", b"stm", b"x"]
STAB_FIELDS = [b"1", b"12", b"-3", b"0x1F", b"0X1F", b"$20", b"-$5", b"007", b"", b"x", b"9z", b"-",
               b"4294967297", b"-2147483648", b"99999999999", b"0x123456789",
               b"1 2", b"\"a b\"", b"$", b"0x", b"5\x81"]
SEPARATORS = [b" ", b" ", b" ", b" ", b"\t", b"  ", b" \t "]
ODD_SEPARATORS = [b"\x01", b"\x0b", b"\x80", b"\xff ", b"\r", b"", b"\xa0"]
ODD_BYTES = [b"\0", b"\r", b"\x01", b"\x0c", b"\x1b", b"\x7f", b"\x80", b"\xa0", b"\xe9", b"\xff",
             b"\"", b"'", b"\\", b"#", b"%", b"$", b"(", b")", b",", b";", b":", b"+", b"-", b"*",
             b"/", b"<", b">", b"=", b"&", b"|", b"^", b"~", b"!", b"@", b"?", b"_", b".", b" ",
             b"\t", b"\n", b"\r\n", b"0", b"1", b"9", b"A", b"x", b"Y", b"SP"]

# "{cwd}" stands for the directory in which the program runs.
SOURCE_NAMES = [b"{cwd}/p.szirpa", b"{cwd}/sub/./p.szirpa", b"./" * 123 + b"p.szirpa",
                b"./" * 124 + b"p.szirpa", b"./p.szirpa", b"sub", b"sub/p.szirpa", b"sub//p.szirpa",
                b"sub/../p.szirpa", b"a.b.szirpa", b"p", b".p", b"p.", b"p q.szirpa",
                b"a\\p.szirpa", b"dir.x\\p", b"~\\..\\p", b"p.s19", b"p.lst", b"\xe9.szirpa"]
OUTPUT_NAMES = [b"out.s19", b"out", b"sub/out.s19", b"sub/", b"sub", b"none/out.s19", b".out",
                b"a.b.c", b"p.szirpa", b"p.fmem", b"p.lst", b"p_cout.c", b"", b"a b.s19",
                b"\"a b.s19\"", b"\"open", b"./p.s19", b"sub/../p.lst", b"o\\ut.s19", b"\"\"",
                b"d.x/out", b"x" * 250 + b".s19", b"x" * 253, b"x" * 256, b"{cwd}/out.s19",
                b"{cwd}/none/out.s19", b"{cwd}/sub/../p.szirpa", b"sub\\out.s19"]
BLOCKING_DIRECTORIES = [b"p.s19/", b"p.lst/", b"p_cout.c/", b"p.fmem/"]
ODD_OPTIONS = [[b"-x"], [b"-"], [b"--"], [b"-l"], [b"-LS"], [b"-S4"], [b"-w2"], [b"-%s%d"],
               [b"-ofoo"], [b'-o"q r.s19"'], [b'-o"q"r'], [b"-ddir"], [b'-d"d e"'], [b"-d", b"dir"],
               [b"-C", b"notrad"], [b"-Cnotrad"], [b"-C", b""], [b"-C", b"NOCASE"],
               [b"-C", b"nonative"], [b"-Cnonative"], [b"-I", b"inc"], [b"-Iinc"], [b'-I"a b"'],
               [b"-I", b""]]
ODD_DEFINES = [b"", b"SIZE=5", b"a b", b"L,1", b"1", b"\xe9", b"L:", b"A", b"-L", b" L", b"L\x01"]

# Lines in which one byte of any value stands at the "@".
BYTE_PLACES = [
    b"@ NOP", b"L@ NOP", b" @NOP", b" NOP@", b" NOP\n@", b"L@", b"L:@", b"L@:", b"@", b" EQU@",
    b" LDA #@", b" LDA #1@", b" LDA #1@2", b" LDA #L@", b" LDA #%1@", b" LDA #$1@", b" LDA #'@'",
    b" LDA #'@", b" LDA 1,@", b" LDA 1,X@", b" LDA ,@", b" LDA ,X@", b" LDA A,@", b" BRA *@",
    b" TFR@X,Y", b" TFR X@Y", b" TFR X,Y@", b" TFR C@,A", b" FCB 1@2", b" FCB (1)@2", b" FCB 1 @",
    b' FCS @a"', b' FCS "@"', b' FCS "\\@"', b' FCS "a"@', b" RMB 2@", b" ORG 5@", b"M EQU 5@",
    b"M EQU@5", b"L@EQU 5", b" END L@", b" END @", b"#@ifdef L\n NOP\n#endif", b"#ifdef@L\n#endif",
    b"#ifdef L@\n NOP\n#else\n CLRA\n#endif", b"##if 1@\n NOP\n#endif", b"#define W@ 5",
    b"#define W 5@", b"#define W @5", b"@#else", b".stab@type x", b".stab type@x",
    b".stab sym @ a:b:3:r", b".stab sym V@a:b:3:r", b".stab sym V a:b:1@:r",
    b".stab sym v a:L@:1:r", b".stab exec @1,2", b".stab exec 1@2", b".stab exec 1,@2",
    b".stab func L:@1:2:3:L:L:L", b".stab func L:1:2:3:L:L:L@", b".stab exec 1,@", b".stab_sym@",
    b".stab_sym @", b"M EQU 1\nM EQU %1&(1)@", b" FCB %1&(1)2@", b"Q" * 128 + b"@ NOP",
    b" LDA #" + b"Q" * 128 + b"@"]

# Long lines: how they begin and what is repeated.
LONG_LINES = [
    (b";", b"x"), (b" ", b" "), (b" FCS \"", b"s"), (b" FCB ", b"1,"), (b" FCB 1", b"+1"),
    (b"L1 EQU ", b"("), (b"L1 EQU ", b"-"), (b"", b"Q"), (b" LDA #1", b"+(1"),
    (b" LDA #", b"0"), (b" LDA #$", b"1"), (b"##if ", b"1"), (b"#define W ", b"1+"),
    (b".stab type ", b"t"), (b".stab sym L ", b":"), (b" NOP ", b"n"), (b" ORG ", b"~"),
    (b"L2", b" "), (b" LDA #", b"8/"), (b"1", b"\0"), (b" FCB 1", b"%%1"), (b" ", b"\x80")]
