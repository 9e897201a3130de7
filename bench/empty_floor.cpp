// The size of a static program before it does anything.
int main() {}
