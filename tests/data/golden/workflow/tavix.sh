#!/bin/sh

python $TAVIX_ROOT/bin/tavix.py 1> log 2>&1 &

