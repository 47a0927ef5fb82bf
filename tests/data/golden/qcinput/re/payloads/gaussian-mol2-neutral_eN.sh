python /work/run/scr/gaussian_log_check.py /work/run/RE/re-mol2-neutral_eN.log
if [ -f /work/run/RE/re-mol2-neutral_eN.log.ok ]; then
    echo "Normal termination of Gaussian detected, skip the current run."
    rm -f /work/run/RE/re-mol2-neutral_eN.log.ok
else
    echo "Run Gaussian job re-mol2-neutral_eN..."
    g16 re-mol2-neutral_eN.com
    python /work/run/scr/gaussian_log_check.py /work/run/RE/re-mol2-neutral_eN.log
    if [ -f /work/run/RE/re-mol2-neutral_eN.log.ok ]; then
        rm -f /work/run/RE/re-mol2-neutral_eN.log.ok
    else
        touch /work/run/RUN/ERROR-RE-re-mol2-neutral_eN
    fi
fi
