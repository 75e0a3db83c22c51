/* Stands in the place of a library that the reference test programs were linked with: it has that one's
 * soname.
 *
 * It has no routine at all, so that no call of theirs can end in another library than the one under test.
 * The CBLAS programs take only this flag from their library, and set it before each test of a row-major
 * call. */
int RowMajorStrg;
