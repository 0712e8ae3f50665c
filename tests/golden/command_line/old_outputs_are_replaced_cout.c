const unsigned char algo[] = {
0xF0,0x05
};
