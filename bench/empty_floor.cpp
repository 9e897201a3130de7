// What a static program weighs before it does anything.
int main() {}
