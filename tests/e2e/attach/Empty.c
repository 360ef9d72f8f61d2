/* A program that does nothing. Its builds cannot be attached to. */

int main(void) { return 0; }
