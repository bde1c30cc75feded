static void Work() {}
