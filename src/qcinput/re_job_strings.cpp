// Transport: the shell payloads of the reorganisation jobs, one state a block. Every
// block first asks the engine's checker whether the output already ended normally
// and then skips the run, so a resubmitted job only redoes what failed; a run that
// fails leaves RUN/ERROR-RE-<name> for the workflow to stop on. The directory names
// scr, RE and RUN stand in the text as words, not as the configured names.
#include <cstdarg>
#include <string>

#include "re_pieces.h"
#include "txutil.h"

namespace {

// Appends one printf-formatted line and its newline.
void line(std::string& out, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
void line(std::string& out, const char* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  out += formatStringV(fmt, args);
  va_end(args);
  out += '\n';
}

void blank(std::string& out) { out += '\n'; }

// What an engine's block says about itself.
struct Engine {
  const char* name;     // in the "Run ... job" line
  const char* checker;  // checker script in scr
  const char* skip;     // what the first check reports before skipping
};

const Engine kGaussian = {"Gaussian", "gaussian_log_check.py", "Gaussian detected, skip the current run."};
const Engine kOrca = {"ORCA", "orca_out_check.py", "ORCA detected, skip the current ORCA run."};
const Engine kQchem = {"Q-Chem", "qchem_out_check.py", "Q-Chem detected, skip the current Q-Chem run."};
const Engine kBdf = {"BDF", "bdf_out_check.py", "BDF detected, skip the current BDF run."};

// Names of one state's block: N the input base, P the output path the checkers read.
struct Names {
  std::string base;
  std::string output;
};

Names names(const Transport& t, int mol_index, const char* state, const std::string& ext) {
  Names n;
  n.base = txre::state_base(mol_index + 1, state);
  n.output = format_string("%s/RE/%s.%s", t.job_workdir.c_str(), n.base.c_str(), ext.c_str());
  return n;
}

// The first check: skip a run whose output ended normally, else open the run.
void check_and_skip(std::string& out, const Transport& t, const Engine& e, const Names& n) {
  line(out, "python %s/scr/%s %s", t.job_workdir.c_str(), e.checker, n.output.c_str());
  line(out, "if [ -f %s.ok ]; then", n.output.c_str());
  line(out, "    echo \"Normal termination of %s\"", e.skip);
  line(out, "    rm -f %s.ok", n.output.c_str());
  line(out, "else");
}

// The check after a run, `indent` deep: a failure leaves its error marker.
void check_after_run(std::string& out, const Transport& t, const Engine& e, const Names& n, const char* indent) {
  line(out, "%spython %s/scr/%s %s", indent, t.job_workdir.c_str(), e.checker, n.output.c_str());
  line(out, "%sif [ -f %s.ok ]; then", indent, n.output.c_str());
  line(out, "%s    rm -f %s.ok", indent, n.output.c_str());
  line(out, "%selse", indent);
  line(out, "%s    touch %s/RUN/ERROR-RE-%s", indent, t.job_workdir.c_str(), n.base.c_str());
  line(out, "%sfi", indent);
}

// Close the run, then check it at the outer level: the form of the engines other
// than Gaussian.
void close_and_check(std::string& out, const Transport& t, const Engine& e, const Names& n) {
  line(out, "fi");
  blank(out);
  check_after_run(out, t, e, n, "");
  blank(out);
}

}  // namespace

// Gaussian checks inside the run branch, so a skipped run is not checked twice.
void Transport::format_RE_gaussian_job_string(std::string& out, int mol_index, const char* state, bool run_formchk) {
  const Names n = names(*this, mol_index, state, txre::output_ext(*this));
  out.clear();
  check_and_skip(out, *this, kGaussian, n);
  line(out, "    echo \"Run %s job %s...\"", kGaussian.name, n.base.c_str());
  line(out, "    %s %s.com", qc_exe.c_str(), n.base.c_str());
  if (run_formchk) line(out, "    %s %s.chk", formchk_exe.c_str(), n.base.c_str());
  check_after_run(out, *this, kGaussian, n, "    ");
  line(out, "fi");
}

// ORCA runs in the scratch directory that its job frame named SCRDIR and brings the
// output, orbitals and Hessian back to the RE directory.
void Transport::format_RE_orca_job_string(std::string& out, int mol_index, const char* state) {
  const Names n = names(*this, mol_index, state, "out");
  const char* base = n.base.c_str();
  out.clear();
  check_and_skip(out, *this, kOrca, n);
  line(out, "    if [ ! -a $SCRDIR ]; then");
  line(out, "        mkdir -p $SCRDIR");
  line(out, "        echo \"Scratch directory $SCRDIR created.\"");
  line(out, "    fi");
  blank(out);
  line(out, "    cp ${DataDir}/%s.inp $SCRDIR", base);
  line(out, "    cd ${SCRDIR}");
  line(out, "    echo \"Working directory is ${SCRDIR}\"");
  blank(out);
  line(out, "    %s %s.inp %s > %s.out", qc_exe.c_str(), base, qc_exe_args.c_str(), base);
  line(out, "    %s %s", orca_2mkl_exe.c_str(), base);
  blank(out);
  line(out, "    CurrDir=`pwd`");
  line(out, "    if [ $CurrDir != $DataDir ]; then");
  line(out, "        echo \"Copy data back to work directory...\"");
  line(out, "        mv $CurrDir/%s.out $DataDir", base);
  line(out, "        mv $CurrDir/%s.mkl $DataDir", base);
  line(out, "        mv $CurrDir/%s.hess $DataDir", base);
  line(out, "    fi");
  blank(out);
  line(out, "    cd ${DataDir}");
  line(out, "    rm -rf ${SCRDIR}");
  close_and_check(out, *this, kOrca, n);
}

void Transport::format_RE_qchem_job_string(std::string& out, int mol_index, const char* state) {
  const Names n = names(*this, mol_index, state, "out");
  out.clear();
  check_and_skip(out, *this, kQchem, n);
  line(out, "    echo \"Run %s job %s...\"", kQchem.name, n.base.c_str());
  line(out, "    %s -nt %d %s.inp > %s.out", qc_exe.c_str(), qc_ppn, n.base.c_str(), n.base.c_str());
  close_and_check(out, *this, kQchem, n);
}

// BDF gets a temporary directory of its own under the one it was given, so that
// several runs of a node do not share one.
void Transport::format_RE_bdf_job_string(std::string& out, int mol_index, const char* state) {
  const Names n = names(*this, mol_index, state, "out");
  const char* base = n.base.c_str();
  out.clear();
  check_and_skip(out, *this, kBdf, n);
  line(out, "    echo \"Run %s job %s...\"", kBdf.name, base);
  line(out, "    export OMP_NUM_THREADS=%d", qc_ppn);
  line(out, "    BDF_TMPDIR_SAV=$BDF_TMPDIR");
  line(out, "    export BDF_TMPDIR=$BDF_TMPDIR_SAV/bdf-%s", base);
  line(out, "    mkdir $BDF_TMPDIR");
  line(out, "    %s -r %s.inp > %s.out", qc_exe.c_str(), base, base);
  line(out, "    rm -rf $BDF_TMPDIR");
  line(out, "    export BDF_TMPDIR=$BDF_TMPDIR_SAV");
  line(out, "    if [ -f %s.out.tmp ]; then", base);
  line(out, "        rm -f %s.out.tmp", base);
  line(out, "    fi");
  close_and_check(out, *this, kBdf, n);
}
