// What starting any program costs: linked like corvo, does nothing.
int main() { return 0; }
