# fixed_layout.sh - sourced first by a script: runs it again without address space randomisation, where that is allowed.
# Wine needs a page at 0x7FFE0000, and a newer kernel may put a program's heap there (anywhere in the gigabyte
# above Wine's loader): one start in some thousands then fails. The sanitizers of these compilers in turn fail where a
# kernel randomises 32 bits (vm.mmap_rnd_bits).
if [ -z "${CORVALIS_FIXED_LAYOUT:-}" ] && setarch -R true 2>/dev/null; then
    export CORVALIS_FIXED_LAYOUT=1
    exec setarch -R bash "$0" "$@"
fi
