select c.name, c.city, count(distinct o.order_no) as orders, sum(i.quantity * i.unit_price) as turnover
from customers c
  join orders o on o.customer_no = c.customer_no
  join items i on i.order_no = o.order_no
where o.status <> 'cancelled' and (c.credit_limit >= 10000 or c.city in ('Hamburg', 'Lyon'))
group by c.name, c.city
order by turnover desc
