/* Checks that the array which HXzirpa has made holds the program sum.szirpa. */

#include <stdio.h>

extern const unsigned char algo[];

/* The program, assembled by hand. */
static const unsigned char expected[] = {
    0x90, 0x1D,             /* 10  start  LDX  #table    */
    0x05,                   /* 12         CLRA           */
    0xC6, 0x00,             /* 13  next   ADDA 0,X       */
    0xCC, 0x01,             /* 15         LEAX 1,X       */
    0x9C, 0x21,             /* 17         CMPX #table+4  */
    0x25, 0xF8,             /* 19         BNE  next      */
    0x21, 0xFE,             /* 1B  done   BRA  done      */
    0x01, 0x02, 0x03, 0x04, /* 1D  table  FCB  1,2,3,4   */
};

int main(void)
{
    size_t i;

    for (i = 0; i < sizeof expected; ++i) {
        if (algo[i] != expected[i]) {
            printf("byte %zu is %02X, not %02X\n", i, algo[i], expected[i]);
            return 1;
        }
    }
    printf("%zu bytes as expected\n", sizeof expected);
    return 0;
}
