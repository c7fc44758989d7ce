function less(a, b) {
    return a < ;
}
