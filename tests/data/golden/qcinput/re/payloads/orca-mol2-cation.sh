python /work/run/scr/orca_out_check.py /work/run/RE/re-mol2-cation.out
if [ -f /work/run/RE/re-mol2-cation.out.ok ]; then
    echo "Normal termination of ORCA detected, skip the current ORCA run."
    rm -f /work/run/RE/re-mol2-cation.out.ok
else
    if [ ! -a $SCRDIR ]; then
        mkdir -p $SCRDIR
        echo "Scratch directory $SCRDIR created."
    fi

    cp ${DataDir}/re-mol2-cation.inp $SCRDIR
    cd ${SCRDIR}
    echo "Working directory is ${SCRDIR}"

    orca re-mol2-cation.inp  > re-mol2-cation.out
    orca_2mkl re-mol2-cation

    CurrDir=`pwd`
    if [ $CurrDir != $DataDir ]; then
        echo "Copy data back to work directory..."
        mv $CurrDir/re-mol2-cation.out $DataDir
        mv $CurrDir/re-mol2-cation.mkl $DataDir
        mv $CurrDir/re-mol2-cation.hess $DataDir
    fi

    cd ${DataDir}
    rm -rf ${SCRDIR}
fi

python /work/run/scr/orca_out_check.py /work/run/RE/re-mol2-cation.out
if [ -f /work/run/RE/re-mol2-cation.out.ok ]; then
    rm -f /work/run/RE/re-mol2-cation.out.ok
else
    touch /work/run/RUN/ERROR-RE-re-mol2-cation
fi

