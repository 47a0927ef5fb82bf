python /work/run/scr/qchem_out_check.py /work/run/RE/re-mol2-anion.out
if [ -f /work/run/RE/re-mol2-anion.out.ok ]; then
    echo "Normal termination of Q-Chem detected, skip the current Q-Chem run."
    rm -f /work/run/RE/re-mol2-anion.out.ok
else
    echo "Run Q-Chem job re-mol2-anion..."
    qchem -nt 4 re-mol2-anion.inp > re-mol2-anion.out
fi

python /work/run/scr/qchem_out_check.py /work/run/RE/re-mol2-anion.out
if [ -f /work/run/RE/re-mol2-anion.out.ok ]; then
    rm -f /work/run/RE/re-mol2-anion.out.ok
else
    touch /work/run/RUN/ERROR-RE-re-mol2-anion
fi

