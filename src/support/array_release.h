// array_release.h - releasing the raw arrays the class chain owns. Each helper
// accepts null and leaves the pointer null, so a release can run more than once.
#ifndef TAVIX_ARRAY_RELEASE_H
#define TAVIX_ARRAY_RELEASE_H

template <typename T>
inline void release_array(T*& p) {
  delete[] p;
  p = nullptr;
}

template <typename T>
inline void release_rows(T**& p, int nrows) {
  if (p) {
    for (int i = 0; i < nrows; ++i) delete[] p[i];
    delete[] p;
  }
  p = nullptr;
}

#endif  // TAVIX_ARRAY_RELEASE_H
