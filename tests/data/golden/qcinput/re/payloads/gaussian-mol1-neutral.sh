python /work/run/scr/gaussian_log_check.py /work/run/RE/re-mol1-neutral.log
if [ -f /work/run/RE/re-mol1-neutral.log.ok ]; then
    echo "Normal termination of Gaussian detected, skip the current run."
    rm -f /work/run/RE/re-mol1-neutral.log.ok
else
    echo "Run Gaussian job re-mol1-neutral..."
    g16 re-mol1-neutral.com
    formchk re-mol1-neutral.chk
    python /work/run/scr/gaussian_log_check.py /work/run/RE/re-mol1-neutral.log
    if [ -f /work/run/RE/re-mol1-neutral.log.ok ]; then
        rm -f /work/run/RE/re-mol1-neutral.log.ok
    else
        touch /work/run/RUN/ERROR-RE-re-mol1-neutral
    fi
fi
