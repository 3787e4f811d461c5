// The least a program can be: what the system itself takes to start one and to see it end.

int main(void) { return 0; }
