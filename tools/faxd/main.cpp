// tqvfaxd: the fax service for Linux. Exit codes: 0 done, 1 failure, 2 the library cannot be loaded.
int main() {
  return 0;
}
