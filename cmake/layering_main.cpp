// Linked with whole layers only, to prove that they need nothing from the layers above them.
int main() { return 0; }
