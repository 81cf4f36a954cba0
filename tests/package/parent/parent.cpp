int parentOfAll() { return 0; }
