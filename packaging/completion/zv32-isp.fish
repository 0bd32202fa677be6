# Completion of fish for the programs of zv32-isp. What may stand there is told by zv32-isp-console/complete.

set -g __zv32_isp_complete (dirname (status filename))/../../zv32-isp-console/complete

function __zv32_isp
    $__zv32_isp_complete (commandline -opc) (commandline -ct) 2>/dev/null
end

for program in ZV32_ISP_Console zv32-line zv32-look zv32-sim zv32-check-map
    complete -c $program -f -a '(__zv32_isp)'
end
