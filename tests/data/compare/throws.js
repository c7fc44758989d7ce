function fails(a, b) {
    throw new Error("cannot compare " + a + " and " + b);
}
