// txutil.h - the support library of the engine: the fatal report, text and file
// helpers, and the small numerics every subsystem shares.
//
// Sources, one topic a file:
//   fatal.cpp            fatal report head and the single process exit
//   text_trim.cpp        trim families
//   text_compare.cpp     case-blind comparison, ci_char_traits
//   text_split.cpp       tokenize, split_to_words, split_string, strhed
//   text_edit.cpp        replacements, path-text fixes, morphNumericString, formatString
//   paths_files.cpp      file names, existence tests, directories, count_lines, glob
//   backup.cpp           backup_file, make_file_backup
//   small_services.cpp   dates, randomString, intN, FNW_hash, OS names
//   matrix_output.cpp    output_matrix, output_vector, output_vvector
//   c_numbers.cpp        number conversions of file readers, in the "C" locale
//   sort.cpp             quickSort_i, quickSort_d
//   random.cpp           ran2 and its distributions, select_reaction
//   eigen.cpp            jacobi_nr, eigsrt_nr
//   linalg3.cpp          3x3 and vector arithmetic, rotation builder, anint
//   fit_integrate.cpp    LinearRegression, rk4_one, rk4_vec
//   fft.cpp              CT_fft, CT_ifft, highestPowerof2
#ifndef TAVIX_TXUTIL_H
#define TAVIX_TXUTIL_H

#include <complex>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <valarray>
#include <vector>

// ---------------------------------------------------------------------------
// Release texts shared by the banners and the default module name
// ---------------------------------------------------------------------------

#define TAVIX_RELEASE_WORD "2022B"
constexpr const char* TAVIX_VERSION_TEXT = TAVIX_RELEASE_WORD " (2.3.4)";
constexpr const char* TAVIX_BUILD_DATE = "Dec  1 2022";  // the compiler's date form

// ---------------------------------------------------------------------------
// Fatal report
// ---------------------------------------------------------------------------

// Source units named in the position line of a fatal report.
namespace txunit {
constexpr const char* transport = "transport";
constexpr const char* fileio = "fileio";
constexpr const char* job_scripts = "job_scripts";
constexpr const char* tavix_inp = "tavix_inp";
constexpr const char* txutil = "txutil";
constexpr const char* tavix_output = "tavix_output";
}  // namespace txunit

// Prints the position line "\nERROR  transport : <unit> : line <line> : \n" on
// standard output. The caller prints its own message afterwards and calls tx_exit.
void fatal_report_head(const char* unit, int line);

// The one way out of the process for every fatal path: flushes both streams and
// ends with `status`. A test or fuzzing harness may install a handler that is
// called first (it may throw or jump away); if it returns, the process exits.
using tx_exit_handler = void (*)(int status);
tx_exit_handler set_tx_exit_handler(tx_exit_handler handler);
[[noreturn]] void tx_exit(int status);

// Head, then the printf-formatted message on `stream`, then tx_exit(status).
[[noreturn]] void fatal_report(const char* unit, int line, int status, FILE* stream, const char* fmt, ...)
    __attribute__((format(printf, 5, 6)));

#define TX_FATAL_HEAD(unit) fatal_report_head((unit), __LINE__)
#define TX_FATAL(unit, status, stream, ...) fatal_report((unit), __LINE__, (status), (stream), __VA_ARGS__)

// ---------------------------------------------------------------------------
// Trimming
// ---------------------------------------------------------------------------

std::string& triml(std::string& s);
std::string& trimr(std::string& s);
std::string& trim(std::string& s);
char* c_triml(char* s);
char* c_trimr(char* s);
char* c_trim(char* s);
std::string& sg_triml(std::string& s);
std::string& sg_trimr(std::string& s);
std::string& sg_trim(std::string& s);

// ---------------------------------------------------------------------------
// Comparison
// ---------------------------------------------------------------------------

struct ci_char_traits : public std::char_traits<char> {
  static bool eq(char c1, char c2);
  static bool ne(char c1, char c2);
  static bool lt(char c1, char c2);
  static int compare(const char* s1, const char* s2, size_t n);
  static const char* find(const char* s, int n, char a);
};
typedef std::basic_string<char, ci_char_traits> ci_string;

bool iequals(const std::string& a, const std::string& b);
bool strcaseequal(const std::string& a, const std::string& b);
bool strcaseequal(const std::string& a, const std::string& b, unsigned long n);
int strcasestr_n(const char* a, const char* b, int n);
bool isAlphabetical(const std::string& s);

// ---------------------------------------------------------------------------
// Splitting
// ---------------------------------------------------------------------------

int tokenize(std::vector<std::string>& out, const char* text, const char* delims);
int tokenize(std::vector<std::string>& out, const std::string& text, const std::string& delims);
void split_to_words(const std::string& text, const std::string& delims, std::vector<std::string>& out);
std::vector<std::string> split_string(const std::string& text);
std::vector<std::string> split_string_dl(const std::string& text, char delim);
char* strhed(char** p);

// ---------------------------------------------------------------------------
// Text editing
// ---------------------------------------------------------------------------

void findAndReplaceAll(std::string& s, const std::string& from, const std::string& to);
std::string RemoveWhiteSpaceUnderscore(const std::string& s);
void ReplaceSlashWithUnderscore(char* s);
void ReplaceSlashWithUnderscore(std::string& s);
void ReplaceBackSlashWithSlash(char* s);
void FixMsys2PathDrive(char* s);
void FixMsys2PathDrive(std::string& s);
void morphNumericString(char* s, int digits);

// Formats by measuring first, then writing into an exactly sized buffer.
template <typename... Args>
std::string format_string(const std::string& fmt, Args... args) {
  int size = std::snprintf(nullptr, 0, fmt.c_str(), args...);
  if (size < 0) return std::string();
  std::unique_ptr<char[]> buf(new char[size + 1]);
  std::snprintf(buf.get(), size + 1, fmt.c_str(), args...);
  return std::string(buf.get(), buf.get() + size);
}
std::string formatString(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
std::string formatStringV(const char* fmt, va_list args);

// ---------------------------------------------------------------------------
// Number conversions of the file readers
// ---------------------------------------------------------------------------

// strtod in the "C" locale whatever the process locale is: files always use a
// decimal point. Leading blanks are skipped; no number gives 0.
double strtod_c(const char* text, char** end = nullptr);
double strtod_c(const std::string& text);
// Base-10 value of the leading integer as strtol reads it, 0 for none, clamped
// to the range of int instead of overflowing.
int leading_int(const char* text, const char** end = nullptr);
int leading_int(const std::string& text);

// ---------------------------------------------------------------------------
// Paths and files
// ---------------------------------------------------------------------------

std::string base_filename(const std::string& path);
std::string remove_filename_extension(const std::string& path);
std::pair<std::string, std::string> getParentPathAndBasename(const std::string& path);
void get_workdir(std::string& out);
int dir_exists(const char* path);
bool fileExist(const char* path);
bool file_exists(const char* path);
bool _file_exist(const std::string& path);
// Creates one directory level (mode 0755) unless it is there already; 0 on success.
int create_directory(const char* path);
int create_directory(const std::string& path);
int count_lines(const char* path);
std::vector<std::string> globFileVector(const std::string& pattern);
void backup_file(const char* path);
void make_file_backup(const std::string& path);

// ---------------------------------------------------------------------------
// Small services
// ---------------------------------------------------------------------------

const char* get_OS_str();
const char* get_OS_sub_str();
int get_date(int* month, int* day, int* year);
void get_now_date_time(char* dst);
char* get_now_date_time();
char* randomString(int n);
int intN(int n);
uint64_t FNW_hash(const char* text);
uint64_t FNW_hash(const std::string& text);

// ---------------------------------------------------------------------------
// Matrix output
// ---------------------------------------------------------------------------

void output_matrix(double** m, int n, int ncol, const char* path);
void output_vector(const double* v, int n, int per_line, const char* path);
void output_vvector(const std::vector<std::vector<double>>& m, const char* path);

// ---------------------------------------------------------------------------
// Sorting
// ---------------------------------------------------------------------------

void swap_int(int* a, int* b);
void swap_dbl(double* a, double* b);
void q_sort(int* key, int* carry, int lo, int hi);       // hi exclusive
void quickSort_i(int* key, int* carry, int n);
void q_sort2(const double* key, int* index, int lo, int hi);  // hi inclusive
void quickSort_d(const double* key, int* index, int n);

// ---------------------------------------------------------------------------
// Random numbers
// ---------------------------------------------------------------------------

extern long idum;          // seed and first stream's state, shared by all distributions
extern int need_newvars;   // 1 when randGaussian must draw a new pair

double ran2(long* idum);
double ran2(long& idum);
double randUniform();
void init_random_seed();
double randGaussian();
double randExponential();
int select_reaction(const double* rates, int n, double total, double u);

// ---------------------------------------------------------------------------
// Eigenproblem (3x3, row-major)
// ---------------------------------------------------------------------------

void jacobi_nr(double a[3][3], int n, double d[3], double v[3][3], int* nrot);
void jacobi_nr(double a[3][3], int n, double d[3], double v[3][3], int& nrot);
void eigsrt_nr(double d[3], double v[3][3], int n);

// ---------------------------------------------------------------------------
// 3x3 and vector arithmetic
// ---------------------------------------------------------------------------

double det(const double m[3][3]);
void transpose_matrix(double m[3][3]);
void transpose_matrix(double** m, int n);
void invert(const double m[3][3], double out[3][3]);
double get_magnitude(const double* v);
double get_dot(const double* a, const double* b);
void mat_vec_mul(const double m[3][3], const double* in, double* out);
void mat_vec_mul_n(const double m[3][3], const double in[][3], double out[][3], int n);
void mat_vec_mul_n(const double m[3][3], const double* in, double* out, int n);  // flat, 3 per vector
void mat_mat_mul(const double a[3][3], const double b[3][3], double c[3][3]);
void mat_mat_mul_nxn(double** a, double** b, double** c, int n);
void mat_scale(const double m[3][3], double s, double out[3][3]);
void mat_mat_add(const double a[3][3], const double b[3][3], double c[3][3]);
void rot_matrix_from_dir_vector_and_angle(double r[3][3], const double* axis, double degrees);
double anint(double x);

// ---------------------------------------------------------------------------
// Fitting and integration
// ---------------------------------------------------------------------------

int LinearRegression(const double* x, const double* y, int n, double* a, double* b, double* s);
double rk4_one(double t, double u, double dt, double (*f)(double, double));
double* rk4_vec(double t, int m, const double* u, double dt, double* (*f)(double, int, const double*));

// ---------------------------------------------------------------------------
// Fourier transform
// ---------------------------------------------------------------------------

typedef std::complex<double> Complex;
typedef std::valarray<Complex> CArray;

void CT_fft(CArray& x);
void CT_ifft(CArray& x);
int highestPowerof2(int n);

#endif  // TAVIX_TXUTIL_H
