/* What an assembler of three passes can't do without: reading the source line by line three times
   and writing its output. The time of a large source is compared with this.

   floor SOURCE RECORD_BYTES SCRIPT_BYTES
   writes floor.s19 and floor.fmem into the working directory. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { LINE = 1024, PASSES = 3 };

struct output {
    FILE *file;
    long size;
    long written;
};

static int opened(struct output *output, const char *name, const char *size) {
    output->file = fopen(name, "w");
    output->size = atol(size);
    output->written = 0;
    return output->file != NULL;
}

/* Writes on until the given share of the whole is there. */
static void write_share(struct output *output, long line, long lines) {
    static char text[LINE];
    long rest = (long)((double)output->size * line / lines) - output->written;
    if (text[0] == '\0') {
        memset(text, '0', sizeof text);
    }
    output->written += rest;
    while (rest > 0) {
        size_t part = rest < LINE ? (size_t)rest : LINE;
        fwrite(text, 1, part, output->file);
        rest -= (long)part;
    }
}

int main(int argc, char **argv) {
    struct output records;
    struct output script;
    char line[LINE];
    long lines = 0;
    FILE *source;
    if (argc != 4 || (source = fopen(argv[1], "r")) == NULL ||
        !opened(&records, "floor.s19", argv[2]) || !opened(&script, "floor.fmem", argv[3])) {
        fputs("usage: floor SOURCE RECORD_BYTES SCRIPT_BYTES\n", stderr);
        return 1;
    }
    for (int pass = 1; pass <= PASSES; ++pass) {
        long number = 0;
        rewind(source);
        while (fgets(line, sizeof line, source) != NULL) {
            ++number;
            if (pass == PASSES) {
                write_share(&records, number, lines);
                write_share(&script, number, lines);
            }
        }
        lines = number;
    }
    fclose(source);
    return fclose(records.file) != 0 || fclose(script.file) != 0;
}
