/* The start-up of any static program: the floor under the time of a small source. */
int main(void) { return 0; }
