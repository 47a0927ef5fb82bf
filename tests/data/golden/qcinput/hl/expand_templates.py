#!/usr/bin/env python3
# Expands the hand-written templates of the HOMO/LUMO goldens in this folder.
# The templates below were typed from the input and driver formats; Python's own
# "%" formatting fills in the numbers. The C++ writers play no part.
import os
out = os.path.dirname(os.path.abspath(__file__))
W = "/home/user/run"
# Fixture crystal: orthorhombic a=4, b=6, c=8; fractional atoms.
abc = (4.0, 6.0, 8.0)
mol = {1: [("C", (0.125, 0.25, 0.5)), ("O", (0.375, 0.25, 0.5))],
       2: [("O", (0.5, 0.75, 0.25)), ("H", (0.75, 0.75, 0.25)), ("H", (0.5, 0.875, 0.25))]}
def cart(m, cell=(0, 0, 0)):
    return [(s, tuple((f[k] + cell[k]) * abc[k] for k in range(3))) for s, f in mol[m]]
nei = {(1, 1): (2, (0, 0, 0)), (1, 2): (1, (1, 0, 0)), (2, 1): (1, (0, -1, 0)), (2, 2): (2, (-1, 0, 1))}
def nei_atoms(i, j):
    m, c = nei[(i, j)]
    return cart(m, c)
def pair_atoms(i, j):
    return cart(i) + nei_atoms(i, j)
APPEND = "-- appended --\n"
def atoms4(atoms):
    return "".join("%-2s %9.4f %9.4f %9.4f\n" % (s, x[0], x[1], x[2]) for s, x in atoms)
def atoms8(atoms):
    return "".join("%-2s %13.8f %13.8f %13.8f\n" % (s, x[0], x[1], x[2]) for s, x in atoms)

def gaussian(atoms, title, chk):
    return ("%%chk=%s.chk\n%%mem=2000MB\n%%nprocs=4\n#P B3LYP/6-31G(d) IOp(3/33=1,5/33=2) Pop=full nosymm\n\n"
            "%s\n\n0 1\n" % (chk, title)) + atoms4(atoms) + "\n" + APPEND
ORCA_EXTRA = ("%output\n  PrintLevel=Normal\n  Print[ P_Basis       ] 2\n  Print[ P_Overlap     ] 1\n"
              "  Print[ P_OrbEn       ] 1\n  Print[ P_MOs         ] 1\nend\n")
def orca(atoms):
    return ("! SP B3LYP def2-SVP NoUseSym\n\n%MaxCore 2000\n%PAL NPROCS 4 END\n\n" + ORCA_EXTRA + "*xyz 0 1\n"
            + atoms4(atoms) + "*\n" + APPEND)
def qchem(atoms):
    return ("$molecule\n0 1\n" + atoms4(atoms) + "$end\n\n"
            "$rem\nJOBTYPE         SP\nMETHOD          B3LYP\nBASIS           def2-SVP\ngui             2\n"
            "symmetry        off\nsym_ignore      true\n$end\n\n" + APPEND)
def bdf(atoms):
    return ("$compass\nTitle\n  HL MOL INP\nGeometry\n" + atoms8(atoms) +
            "End Geometry\nBasis\n  def2-SVP\nSkeleton\nnosymm\n$end\n\n"
            "$xuanyuan\nDirect\n$end\n\n"
            "$scf\nRKS\nCharge\n  0\nSpinMulti\n  1\nDFT\n  B3LYP\nMPEC+COSX\nIprtMo\n  2\noutaooverlap\n$end\n\n"
            + APPEND)

def put(rel, text):
    p = os.path.join(out, rel)
    os.makedirs(os.path.dirname(p), exist_ok=True)
    with open(p, "w") as f:
        f.write(text)

cases = {"uc_mol-2": (cart(2), "uc_mol"), "nei_mol-2-2": (nei_atoms(2, 2), "nei_mol"),
         "2mol-2-1": (pair_atoms(2, 1), "2mol-2-1")}
for base, (atoms, title) in cases.items():
    put("gaussian/%s.com" % base, gaussian(atoms, title, base))
    put("orca/%s.inp" % base, orca(atoms))
    put("qchem/%s.inp" % base, qchem(atoms))
    put("bdf/%s.inp" % base, bdf(atoms))

# Drivers, PBS: submit "qsub", extension "pbs".
def head(pair_imports, blank_after_chdir):
    s = "#!/usr/bin/env python\nimport os\n"
    if pair_imports:
        s += "import glob\nimport shutil\n"
    s += "\ncwd = os.getcwd()\nos.chdir(\"HL\")\n"
    if blank_after_chdir:
        s += "\n"
    return s
END = "os.chdir(cwd)\n\n"
def job(name, sep):
    s = "# ----\n\n" if sep else ""
    return s + 'os.system("touch %s/RUN/running.HL_%s")\nos.system("qsub ../jobs/job_%s.pbs")\n\n' % (W, name, name)
def array(marker, idx, script):
    s = "".join('os.system("touch %s/RUN/running.HL_%s-%d")\n' % (W, marker, k) for k in idx)
    return s + '\nos.system("qsub ../jobs/%s.pbs")\n\n' % script

keys = [(1, 1), (1, 2), (2, 1), (2, 2)]
for eng, later in (("gaussian", False), ("orca", True)):
    # mol_one_uc.py
    h = head(False, not later)
    put("%s/mol_one_uc.plain.py" % eng, h + job("uc_mol-1", later) + job("uc_mol-2", later) + END)
    put("%s/mol_one_uc.array.py" % eng, h + array("uc_mol", [1, 2], "job_uc_mol") + END)
    put("%s/mol_one_uc.unique.py" % eng, h + job("uc_mol-2", True) + END)
    put("%s/mol_one_uc.unique_array.py" % eng, h + array("uc_mol", [2], "job_uc_mol") + END)
    for drv, pre, pair in (("mol_one_nei", "nei_mol", False), ("mol_two", "2mol", True)):
        h = head(pair and later, True)
        put("%s/%s.plain.py" % (eng, drv), h + "".join(job("%s-%d-%d" % (pre, i, j), later) for i, j in keys) + END)
        put("%s/%s.array.py" % (eng, drv), h + array("%s-1" % pre, [1, 2], "job_%s-1" % pre)
            + array("%s-2" % pre, [1, 2], "job_%s-2" % pre) + END)
        put("%s/%s.unique.py" % (eng, drv), h + job("%s-3" % pre, True) + job("%s-4" % pre, True) + END)
        marker = pre
        if pair and not later:
            marker = "2mol_unique"
        put("%s/%s.unique_array.py" % (eng, drv), h + array(marker, [3, 4], "job_%s" % pre) + END)
