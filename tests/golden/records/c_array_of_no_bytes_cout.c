const unsigned char algo[] = {
};
