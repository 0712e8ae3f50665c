const unsigned char algo[] = {
0x01
};
