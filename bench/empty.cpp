// The start-up of any program that is built as this one is: the floor under the time of a small
// source.
int main() { return 0; }
