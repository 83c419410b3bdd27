// A host that asks nothing of the framework, and still gets its static start-up.

int main() {}
