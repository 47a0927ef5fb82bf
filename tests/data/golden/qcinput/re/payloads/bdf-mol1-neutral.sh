python /work/run/scr/bdf_out_check.py /work/run/RE/re-mol1-neutral.out
if [ -f /work/run/RE/re-mol1-neutral.out.ok ]; then
    echo "Normal termination of BDF detected, skip the current BDF run."
    rm -f /work/run/RE/re-mol1-neutral.out.ok
else
    echo "Run BDF job re-mol1-neutral..."
    export OMP_NUM_THREADS=4
    BDF_TMPDIR_SAV=$BDF_TMPDIR
    export BDF_TMPDIR=$BDF_TMPDIR_SAV/bdf-re-mol1-neutral
    mkdir $BDF_TMPDIR
    run.sh -r re-mol1-neutral.inp > re-mol1-neutral.out
    rm -rf $BDF_TMPDIR
    export BDF_TMPDIR=$BDF_TMPDIR_SAV
    if [ -f re-mol1-neutral.out.tmp ]; then
        rm -f re-mol1-neutral.out.tmp
    fi
fi

python /work/run/scr/bdf_out_check.py /work/run/RE/re-mol1-neutral.out
if [ -f /work/run/RE/re-mol1-neutral.out.ok ]; then
    rm -f /work/run/RE/re-mol1-neutral.out.ok
else
    touch /work/run/RUN/ERROR-RE-re-mol1-neutral
fi

