// checker_script_tables.cpp - the scripts that travel with a run, as tables of lines.
// Every entry is one line without its newline; write_script_lines adds it.
#include "checker_script_tables.h"

#include <iterator>

// End tests of the quantum-chemistry outputs. Called as "python <scr>/<script> <output>", each removes
// the old verdicts first, then touches <output>.ok on a normal end or <output>.error (with a message) on an
// abnormal one. A missing output gives no verdict at all, so the caller's test on .ok fails and the run goes
// on. The Gaussian form reads line by line; an empty output fails at "last = line" and leaves no verdict.
// That is kept on purpose: the job script then treats the run as not done and starts it again.
const char* const gaussian_log_check_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "GauNormEndStr=' Normal termination of Gaussian'",
    "",
    "if os.path.isfile(Input):",
    "    with open(Input) as f:",
    "        for line in f:",
    "            pass",
    "        last = line",
    "    if last.find(GauNormEndStr) != -1:",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"\\nAbnormal termination of Gaussian with '%s'!\\n\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t gaussian_log_check_py_size = std::size(gaussian_log_check_py);

// The line before the last decides: ORCA closes with a timing line after its termination banner.
const char* const orca_out_check_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "if os.path.isfile(Input):",
    "    with open(Input) as f:",
    "        lines = f.readlines()",
    "    tagline = lines[-2]",
    "    if tagline.find('ORCA TERMINATED NORMALLY') != -1:",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"Abnormal termination of ORCA with %s!\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t orca_out_check_py_size = std::size(orca_out_check_py);

const char* const qchem_out_check_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "if os.path.isfile(Input):",
    "    if 'Have a nice day.' in open(Input).read():",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"Abnormal termination of Q-Chem with %s!\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t qchem_out_check_py_size = std::size(qchem_out_check_py);

const char* const bdf_out_check_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "if os.path.isfile(Input):",
    "    if 'Normal termination. Thank you very much for using BDF.' in open(Input).read():",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"Abnormal termination of BDF with %s!\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t bdf_out_check_py_size = std::size(bdf_out_check_py);

// Extension scripts, called with the directory to treat. The directory argument is not tested; without one
// the script fails in Python. An existing target is replaced.
const char* const qchem_fchk_ext_lowercase_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import shutil",
    "import sys",
    "",
    "directory = sys.argv[1]",
    "",
    "for file in [f for f in os.listdir(directory) if f.endswith('.FChk')]:",
    "    newname = file[:file.rfind('.')]+'.fchk'",
    "",
    "    if os.path.exists(directory+'/'+newname):",
    "        os.remove(directory+'/'+newname)",
    "",
    "    shutil.move(directory+'/'+file, directory+'/'+newname)",
};
const std::size_t qchem_fchk_ext_lowercase_py_size = std::size(qchem_fchk_ext_lowercase_py);

const char* const gau_ext_out_to_log_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import shutil",
    "import sys",
    "",
    "directory = sys.argv[1]",
    "",
    "for file in [f for f in os.listdir(directory) if f.endswith('.out')]:",
    "    newname = file[:file.rfind('.')]+'.log'",
    "",
    "    if os.path.exists(directory+'/'+newname):",
    "        os.remove(directory+'/'+newname)",
    "",
    "    shutil.move(directory+'/'+file, directory+'/'+newname)",
};
const std::size_t gau_ext_out_to_log_py_size = std::size(gau_ext_out_to_log_py);

const char* const gau_ext_fch_to_fchk_py[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import shutil",
    "import sys",
    "",
    "directory = sys.argv[1]",
    "",
    "for file in [f for f in os.listdir(directory) if f.endswith('.fch')]:",
    "    newname = file[:file.rfind('.')]+'.fchk'",
    "",
    "    if os.path.exists(directory+'/'+newname):",
    "        os.remove(directory+'/'+newname)",
    "",
    "    shutil.move(directory+'/'+file, directory+'/'+newname)",
};
const std::size_t gau_ext_fch_to_fchk_py_size = std::size(gau_ext_fch_to_fchk_py);

// Two other forms of the Gaussian end test that no operation writes; kept as data. The binary form reads
// backwards from the end. Its os_SEEK_CUR (not os.SEEK_CUR) is kept as the form has it, deliberately:
// the table is carried unchanged and nothing runs it.
const char* const gaussian_log_check_py_b[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "GauNormEndStr=' Normal termination of Gaussian'",
    "",
    "if os.path.isfile(Input):",
    "    with open(Input, 'rb') as f:",
    "        try:",
    "            f.seek(-2, os.SEEK_END)",
    "            while f.read(1) != b'\\n':",
    "                f.seek(-2, os_SEEK_CUR)",
    "        except OSError:",
    "            f.seek(0)",
    "        last = f.readline().decode()",
    "    if last.find(GauNormEndStr) != -1:",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"\\nAbnormal termination of Gaussian with '%s'!\\n\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t gaussian_log_check_py_b_size = std::size(gaussian_log_check_py_b);

const char* const gaussian_log_check_py_n[] = {
    "#!/usr/bin/env python",
    "",
    "import os",
    "import sys",
    "",
    "if len(sys.argv) == 1:",
    "    sys.exit(1)",
    "",
    "Input = sys.argv[1]",
    "os.system('rm -f %s.ok' % Input)",
    "os.system('rm -f %s.error' % Input)",
    "",
    "GauNormEndStr=' Normal termination of Gaussian'",
    "",
    "if os.path.isfile(Input):",
    "    with open(Input) as f:",
    "        lines = f.readlines()",
    "        last = lines[-1]",
    "    if last.find(GauNormEndStr) != -1:",
    "        os.system('touch %s.ok' % Input)",
    "        sys.exit(0)",
    "    else:",
    "        sys.stdout.write(\"\\nAbnormal termination of Gaussian with '%s'!\\n\\n\" % Input)",
    "        os.system('touch %s.error' % Input)",
    "        sys.exit(1)",
    "else:",
    "    sys.exit(1)",
};
const std::size_t gaussian_log_check_py_n_size = std::size(gaussian_log_check_py_n);

// Head of prepare-mc.py and prepare-me.py; the driver writers add the copies behind "import shutil".
const char* const prepare_mc_py_head[] = {
    "#!/usr/bin/env python",
    "",
    "# Prepares one carrier directory: copies the inputs in, sets carrier and temperature, computes the hop rates.",
    "# Written by the preparing stage of the run; it is rewritten on every preparation.",
    "",
    "import os",
    "import shutil",
};
const std::size_t prepare_mc_py_head_size = std::size(prepare_mc_py_head);

// Pieces of get_RE.py. The head ends in the evc directory with cwd2 set; per molecule the writer enters
// mol<i>/elec or mol<i>/hole and puts a read table there, which leaves e_lam, e_lam1, e_lam2 (or h_*) in meV
// for the lambda.dat lines that the writer adds behind it.
const char* const exp_re_py_head[] = {
    "#!/usr/bin/env python",
    "",
    "# Collects the reorganisation energies and the normal modes of every molecule from the evc directories.",
    "# Written by the preparing stage of the run; it is rewritten on every preparation.",
    "",
    "import os",
    "import sys",
    "import shutil",
    "",
    "sys.stdout.write(\"Calculating NM data ...\\n\")",
    "",
    "lamda_line = \"Total reorganization energy\"",
    "",
    "# cm-1 to meV",
    "ener_scale = 0.1239842",
    "",
    "cwd = os.getcwd()",
    "",
    "access_rights = 493",
    "",
    "if not os.path.isdir(\"evc\"):",
    "    os.mkdir(\"evc\", access_rights)",
    "os.chdir(\"evc\")",
    "cwd2 = os.getcwd()",
    "",
};
const std::size_t exp_re_py_head_size = std::size(exp_re_py_head);

const char* const exp_re_py_read_lambda_elec[] = {
    "e_lam1 = 0",
    "e_lam2 = 0",
    "e_lam  = 0",
    "",
    "with open(\"evc.cart.dat\", \"r\") as f:",
    "    lines = f.readlines()",
    "    for line in lines:",
    "        if lamda_line in line:",
    "            lams = line.split()",
    "            e_lam1 = float(lams[-2]) * ener_scale",
    "            e_lam2 = float(lams[-1]) * ener_scale",
    "            e_lam=e_lam1 + e_lam2",
    "            break",
    "",
};
const std::size_t exp_re_py_read_lambda_elec_size = std::size(exp_re_py_read_lambda_elec);

const char* const exp_re_py_read_lambda_hole[] = {
    "h_lam1 = 0",
    "h_lam2 = 0",
    "h_lam  = 0",
    "",
    "with open(\"evc.cart.dat\", \"r\") as f:",
    "    lines = f.readlines()",
    "    for line in lines:",
    "        if lamda_line in line:",
    "            lams = line.split()",
    "            h_lam1 = float(lams[-2]) * ener_scale",
    "            h_lam2 = float(lams[-1]) * ener_scale",
    "            h_lam = h_lam1 + h_lam2",
    "            break",
    "",
};
const std::size_t exp_re_py_read_lambda_hole_size = std::size(exp_re_py_read_lambda_hole);

// One lambda.dat for both carriers in the shorter number form; no operation writes it.
const char* const exp_re_py_write_lambda_eh[] = {
    "with open(\"lambda.dat\", \"w\") as n:",
    "    n.write(\"elec:\\n\")",
    "    n.write(\"lam lam1 lam2 [meV]\\n\")",
    "    n.write(\"%12.8f %12.8f %12.8f\\n\" % (e_lam, e_lam1, e_lam2))",
    "    n.write(\"hole:\\n\")",
    "    n.write(\"lam lam1 lam2 [meV]\\n\")",
    "    n.write(\"%12.8f %12.8f %12.8f\\n\" % (h_lam, h_lam1, h_lam2))",
    "    n.write(\"# reorganization energies: lam lam1 lam2 [meV]\\n\")",
};
const std::size_t exp_re_py_write_lambda_eh_size = std::size(exp_re_py_write_lambda_eh);

// Kept as data without a writer. It is in the old print-statement form, so it compiles only under the
// old interpreter; nothing writes it, and it must not be written as it stands.
const char* const extract_homo_lumo_py[] = {
    "#!/usr/bin/env python",
    "",
    "# Reads the orbital energies of listings and appends the HOMO and LUMO levels, in meV, to the VH and VL files.",
    "# Usage: extract_homo_lumo.py <glob pattern> <stub>; one line per listing, tagged with its file name.",
    "",
    "import sys",
    "import glob",
    "",
    "block = 'Population'",
    "eigen = 'eigenvalues'",
    "occst = 'occ'",
    "virst = 'vir'",
    "sepst = '--'",
    "HATREE = 27.21e3",
    "",
    "if len(sys.argv) < 3:",
    "    print 'Usage: extract_homo_lumo.py <glob pattern> <stub>'",
    "    sys.exit(1)",
    "",
    "pattern = sys.argv[1]",
    "stub = sys.argv[2]",
    "",
    "for fname in sorted(glob.glob(pattern)):",
    "    homo_ener = []",
    "    lumo_ener = []",
    "    inblock = False",
    "    f = open(fname)",
    "    for line in f:",
    "        if line.find(block) != -1:",
    "            inblock = True",
    "            homo_ener = []",
    "            lumo_ener = []",
    "            continue",
    "        if not inblock or line.find(eigen) == -1 or line.find(sepst) == -1:",
    "            continue",
    "        text = line[line.find(sepst) + len(sepst):]",
    "        if line.find(occst) != -1:",
    "            homo_ener.append(text)",
    "        elif line.find(virst) != -1:",
    "            lumo_ener.append(text)",
    "    f.close()",
    "    if len(homo_ener) == 0 or len(lumo_ener) == 0:",
    "        print 'No orbital energies in %s' % fname",
    "        continue",
    "    homo = min(homo_ener).split()[-1]",
    "    lumo = min(lumo_ener).split()[0]",
    "    n = open('VH' + stub, 'a')",
    "    print >> n, '%10.4f  meV  #  %s' % (float(homo) * HATREE, fname)",
    "    n.close()",
    "    n = open('VL' + stub, 'a')",
    "    print >> n, '%10.4f  meV  #  %s' % (float(lumo) * HATREE, fname)",
    "    n.close()",
};
const std::size_t extract_homo_lumo_py_size = std::size(extract_homo_lumo_py);

// Kept as data without a writer.
const char* const exp_inf_py[] = {
    "#!/usr/bin/env python",
    "",
    "# Enters the data directory of the run, where the collected results lie.",
    "# Written by the preparing stage of the run; it is rewritten on every preparation.",
    "",
    "import os",
    "",
    "os.chdir(\"data\")",
};
const std::size_t exp_inf_py_size = std::size(exp_inf_py);
