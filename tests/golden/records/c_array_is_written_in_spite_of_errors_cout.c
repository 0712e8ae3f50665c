const unsigned char algo[] = {
0x01,0x00
};
